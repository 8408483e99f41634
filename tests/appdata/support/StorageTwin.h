#pragma once

#include <notification/utils/MakeNode.h>
#include <shared/logging/FrameworkLog.h>

#include <QDeadlineTimer>
#include <QMutex>
#include <QWaitCondition>

#include <MemoryStorage.h>
#include <stdexcept>

namespace TestSupport {

/*
 * The plug-in's storage in memory, which fails on request:
 *
 *     twin->arrange(StorageTwin::Operation::SerializeElement, StorageTwin::Fault::Throw, 3); // third call
 *     twin->arrange(StorageTwin::Operation::GetEntries, StorageTwin::Fault::Hang);
 *     ...
 *     twin->release(); // those that hang go on
 *
 * It outlives storages that are made of it, with what it holds.
 */
class StorageTwin : public Tessellum::Plugins::Memory::MemoryStorage
{
public:
    using StorageCreateData = Tessellum::AppData::Storages::StorageCreateData;
    using UpdateType = Tessellum::AppData::DataElementUpdateType;
    using LoadDataHint = Tessellum::AppData::LoadDataHint;

    enum class Operation {
        GetEntryTypes,
        ConnectStorage,
        SerializeEntry,
        SerializeElement,
        GetEntries,
        DeserializeEntry,
        DeserializeElement,
        GetElementRawData,
        UpdateElement
    };
    enum class Fault {
        Fail, // false, an empty result or 0, with nothing changed
        Throw, // a std::runtime_error
        ThrowInt, // what is no std::exception
        Hang // works after release()
    };
    static constexpr int Always = -1;
    static constexpr int Patience = 30000; // milliseconds; a hanging call goes on then at the latest

    explicit StorageTwin(const StorageCreateData &data = StorageCreateData())
        : MemoryStorage(data)
    { }
    ~StorageTwin() override { release(); }

    static std::shared_ptr<StorageTwin> Make(const StorageCreateData &data = StorageCreateData())
    {
        return Tessellum::Notification::utils::MakeNode<StorageTwin>(data);
    }

    // Lets \a operation suffer \a fault in its \a nth call from now and in those after it, \a times in all.
    void arrange(Operation operation, Fault fault, int nth = 1, int times = 1)
    {
        const QMutexLocker locker(&faultMutex);
        faults.insert(operation, {fault, nth - 1, times});
    }
    void forgetFaults()
    {
        const QMutexLocker locker(&faultMutex);
        faults.clear();
    }
    // Lets the calls that hang now go on.
    void release()
    {
        const QMutexLocker locker(&faultMutex);
        ++releases;
        released.wakeAll();
    }
    int calls(Operation operation) const
    {
        const QMutexLocker locker(&faultMutex);
        return counts.value(operation);
    }
    // How many calls hang now.
    int hanging() const
    {
        const QMutexLocker locker(&faultMutex);
        return hangingCalls;
    }
    // Lets getElementIds() return a count that its list does not have.
    void setMiscounting(bool on) { miscounting = on; }

    QStringList getEntryTypes() const override
    {
        return suffer(Operation::GetEntryTypes) ? QStringList{QStringLiteral("twin")} : QStringList();
    }
    bool connectStorage() override
    {
        return suffer(Operation::ConnectStorage) && MemoryStorage::connectStorage();
    }
    bool serializeEntry(const QString &uuid, const EntryRecord &record) override
    {
        return suffer(Operation::SerializeEntry) && MemoryStorage::serializeEntry(uuid, record);
    }
    bool serializeElement(const QString &entryUuid, const QString &elementUuid,
                          const ElementValues &values) override
    {
        return suffer(Operation::SerializeElement)
            && MemoryStorage::serializeElement(entryUuid, elementUuid, values);
    }
    quint64 getEntries(QHash<QString, EntryRecord> &found) const override
    {
        return suffer(Operation::GetEntries) ? MemoryStorage::getEntries(found) : 0;
    }
    bool deserializeEntry(const QString &uuid, EntryRecord &record) const override
    {
        return suffer(Operation::DeserializeEntry) && MemoryStorage::deserializeEntry(uuid, record);
    }
    quint64 getElementIds(const QString &entryUuid, QStringList &uuids) const override
    {
        return MemoryStorage::getElementIds(entryUuid, uuids) + (miscounting ? 1 : 0);
    }
    bool deserializeElement(const QString &entryUuid, const QString &elementUuid, ElementValues &values,
                            const LoadDataHint &hint) const override
    {
        return suffer(Operation::DeserializeElement)
            && MemoryStorage::deserializeElement(entryUuid, elementUuid, values, hint);
    }
    QByteArray getElementRawData(const QString &entryUuid, const QString &elementUuid) const override
    {
        return suffer(Operation::GetElementRawData) ? MemoryStorage::getElementRawData(entryUuid, elementUuid)
                                                    : QByteArray();
    }
    bool updateElement(const QString &entryUuid, const QString &elementUuid,
                       const ElementValues &values) override
    {
        return suffer(Operation::UpdateElement)
            && MemoryStorage::updateElement(entryUuid, elementUuid, values);
    }

private:
    struct Arranged
    {
        Fault fault;
        int before; // calls that are still sound
        int times; // calls that suffer from then on; Always for all
    };

    // False where the call is to fail; returns late or throws where that was arranged.
    bool suffer(Operation operation) const
    {
        QMutexLocker locker(&faultMutex);
        ++counts[operation];
        const auto arranged = faults.find(operation);
        if (arranged == faults.end() || arranged->before-- > 0)
            return true;
        const Arranged now = *arranged;
        if (now.times != Always && --arranged->times == 0)
            faults.erase(arranged);
        switch (now.fault) {
        case Fault::Fail:
            locker.unlock();
            Shared::Logging::FrameworkLog().warning()
                << "StorageTwin::suffer() operation " << int(operation) << " fails because it was asked to";
            return false;
        case Fault::Throw:
            throw std::runtime_error("the storage twin throws because it was asked to");
        case Fault::ThrowInt:
            throw 42;
        case Fault::Hang:
            ++hangingCalls;
            const QDeadlineTimer deadline(Patience);
            const int before = releases;
            while (releases == before && released.wait(&faultMutex, deadline)) { }
            --hangingCalls;
            return true;
        }
        return true;
    }

    std::atomic<bool> miscounting{false};

    mutable QMutex faultMutex; // what follows
    mutable QWaitCondition released;
    mutable QMap<Operation, Arranged> faults;
    mutable QMap<Operation, int> counts;
    mutable int hangingCalls = 0;
    int releases = 0;
};

} // namespace TestSupport
