#pragma once

#include "core/StressModel.h"

#include <appconfig/interfaces/RepositoryInterface.h>

#include <QHash>
#include <QRandomGenerator>
#include <QThread>
#include <QWaitCondition>

#include <support/Literals.h>

/*! Lets the main thread hold all workers between two operations. */
class StressGate
{
public:
    explicit StressGate(int workerCount)
        : workers(workerCount)
    { }
    /*! Called by each worker between its operations; false: end. */
    bool pass();
    /*! Returns when every worker stands at the gate. */
    void close();
    void open();
    void end();

private:
    QMutex mutex;
    QWaitCondition changed;
    const int workers;
    int waiting = 0;
    bool closed = true;
    bool ended = false;
};

/*!
 * Does what an application could do, at random, in a part of the tree of its own and in a shared one. What
 * was acknowledged in its own part is its model; only the main thread reads it, while the gate is closed.
 */
class StressWorker : public QThread
{
    Q_OBJECT
public:
    StressWorker(int number, StressGate &gate, StressRecord &record);

    /*! For the main thread, with the gate closed. */
    void beginRun();
    QString findDifference() const;
    QString prefix() const { return "stress.w%1"_s.arg(number); }
    /*! Set before a stop begins: what ends later is not taken for acknowledged. */
    static std::atomic<bool> stopping;

protected:
    void run() override;

private:
    void doSomething();
    void create();
    void update(const QString &path, bool own);
    void updateOwn();
    void updateShared();
    void updateRefused();
    void remove();
    void move();
    void read();
    void toggleHandler();
    void assign();
    void save();
    QString randomOwnPath();
    static qlonglong nextValue();

    const int number;
    StressGate &gate;
    StressRecord &record;
    QRandomGenerator random;
    std::shared_ptr<Tessellum::AppConfig::Interfaces::RepositoryInterface> found; // during an operation
    QHash<QString, qlonglong> model;
    struct Registration
    {
        std::shared_ptr<StressHandler> handler;
        std::shared_ptr<Tessellum::Notification::Interfaces::NotificationHandleInterface> handle;
    };
    QList<Registration> registrations;
};
