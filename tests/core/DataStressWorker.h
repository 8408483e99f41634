#pragma once

#include "appdata/support/StorageTwin.h"
#include "core/StressWorker.h"

#include <appdata/interfaces/RepositoryInterface.h>

#include <QMap>

/*!
 * Does with recorded data what an application could do, at random, in entries and a storage of its own; reads
 * those of the others too. What was acknowledged is its model; only the main thread reads it, while the gate
 * is closed.
 */
class DataStressWorker : public QThread
{
    Q_OBJECT
public:
    DataStressWorker(int number, StressGate &gate);

    /*! For the main thread, with the gate closed. Adds the storage and the entries of a run. */
    bool beginRun();
    /*! What differs between the model, the tree, the pairs and the medium; empty if nothing does. */
    QString findDifference() const;
    int operationCount() const { return operations; }

    /*! Set before a stop begins: what ends later is not taken for acknowledged. */
    static std::atomic<bool> stopping;

protected:
    void run() override;

private:
    using EntryPtr = std::shared_ptr<Tessellum::AppData::Interfaces::DataEntryInterface>;
    struct Value
    {
        QString uuid;
        quint64 timestamp;
        double value;
    };
    struct Entry
    {
        QString uuid;
        quint64 capacity = 0;
        bool persistent = false;
        QVector<Value> values; // in the order of the children
    };

    void doSomething();
    void add(const QString &name);
    void setTimestamp(const QString &name);
    void readOwn(const QString &name);
    void readOthers(const QString &);
    void loadOrUnload(const QString &name);
    void changeStrategy(const QString &name);
    void removeAndAdd(const QString &name);
    void removeAndAddStorage(const QString &);
    void unloadAndLoadEntry(const QString &name);
    void useConfiguration(const QString &);
    bool addEntry(const QString &name);
    bool loadEntry(const QString &uuid) const;
    EntryPtr find(const QString &name) const;
    QString classification() const { return "stress%1"_s.arg(number); }
    QString storageName() const { return "medium%1"_s.arg(number); }
    QString differenceOf(const QString &name, const Entry &expected) const;
    void fail(const QString &text) const;

    const int number;
    StressGate &gate;
    QRandomGenerator random;
    // Of this run; anew for each operation, as a stop may have begun.
    std::shared_ptr<Tessellum::AppData::Interfaces::RepositoryInterface> data;
    std::shared_ptr<TestSupport::StorageTwin> medium;
    QMap<QString, Entry> model;
    bool valid = false; // false once an operation may have been cut by a stop
    int operations = 0;
    mutable QString failure;
};
