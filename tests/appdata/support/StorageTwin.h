#pragma once

#include <appdata/storages/StorageImplementation.h>
#include <notification/utils/MakeNode.h>
#include <shared/logging/FrameworkLog.h>

#include <QDeadlineTimer>
#include <QMutex>
#include <QWaitCondition>

#include <stdexcept>

namespace TestSupport {

/*
 * A storage in memory that keeps the contract and fails on request:
 *
 *     twin->arrange(StorageTwin::Operation::SerializeElement, StorageTwin::Fault::Throw, 3); // the third
 * call twin->arrange(StorageTwin::Operation::GetEntries, StorageTwin::Fault::Hang);
 *     ...
 *     twin->release(); // those that hang go on
 *
 * It outlives storages that are made of it, with what it holds.
 */
class StorageTwin : public Tessellum::AppData::Storages::StorageImplementation
{
public:
    using StorageCreateData = Tessellum::AppData::Storages::StorageCreateData;
    using UpdateType = Tessellum::AppData::DataElementUpdateType;
    using LoadDataHint = Tessellum::AppData::LoadDataHint;

    enum class Operation {
        GetEntryTypes,
        ConnectStorage,
        DisconnectStorage,
        IsConnected,
        SerializeEntry,
        SerializeElement,
        GetEntries,
        DeserializeEntry,
        GetElementIds,
        DeserializeElement,
        GetElementRawData,
        RemoveEntry,
        UpdateElement,
        UpdateElementValue
    };
    enum class Fault {
        Fail, // false, an empty result or 0, with nothing changed
        Throw, // a std::runtime_error
        ThrowInt, // what is no std::exception
        Delay, // works after some milliseconds
        Hang // works after release()
    };
    static constexpr int Always = -1;
    static constexpr int Patience = 30000; // milliseconds; a hanging call goes on then at the latest

    explicit StorageTwin(const StorageCreateData &data = StorageCreateData())
        : StorageImplementation(data)
    { }
    ~StorageTwin() override { release(); }

    static std::shared_ptr<StorageTwin> Make(const StorageCreateData &data = StorageCreateData())
    {
        return Tessellum::Notification::utils::MakeNode<StorageTwin>(data);
    }

    // Lets \a operation suffer \a fault in its \a nth call from now and in those after it, \a times in all.
    void arrange(Operation operation, Fault fault, int nth = 1, int times = 1, int milliseconds = 20)
    {
        const QMutexLocker locker(&faultMutex);
        faults.insert(operation, {fault, nth - 1, times, milliseconds});
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
    bool connectStorage() override { return suffer(Operation::ConnectStorage) && setConnected(true); }
    bool disconnectStorage() override { return suffer(Operation::DisconnectStorage) && setConnected(false); }
    bool isConnected() const override
    {
        const bool sound = suffer(Operation::IsConnected);
        const QMutexLocker locker(&mutex);
        return sound && connected;
    }
    bool serializeEntry(const QString &uuid, const EntryRecord &record) override
    {
        return change(Operation::SerializeEntry, [&] {
            entries[uuid].record = record;
            return true;
        });
    }
    bool serializeElement(const QString &entryUuid, const QString &elementUuid,
                          const ElementValues &values) override
    {
        return change(Operation::SerializeElement, [&] {
            if (!entries.contains(entryUuid))
                return false;
            Entry &entry = entries[entryUuid];
            if (!entry.elements.contains(elementUuid))
                entry.order.append(elementUuid);
            ElementValues &stored = entry.elements[elementUuid];
            stored = ElementValues();
            return put(stored, values);
        });
    }
    quint64 getEntries(QHash<QString, EntryRecord> &found) const override
    {
        found.clear();
        change(Operation::GetEntries, [&] {
            for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
                found.insert(entry.key(), entry->record);
            return true;
        });
        return quint64(found.size());
    }
    bool deserializeEntry(const QString &uuid, EntryRecord &record) const override
    {
        return change(Operation::DeserializeEntry, [&] {
            if (!entries.contains(uuid))
                return false;
            record = entries.value(uuid).record;
            return true;
        });
    }
    quint64 getElementIds(const QString &entryUuid, QStringList &uuids) const override
    {
        uuids.clear();
        change(Operation::GetElementIds, [&] {
            uuids = entries.value(entryUuid).order;
            return true;
        });
        return quint64(uuids.size()) + (miscounting ? 1 : 0);
    }
    bool deserializeElement(const QString &entryUuid, const QString &elementUuid, ElementValues &values,
                            const LoadDataHint &hint) const override
    {
        return change(Operation::DeserializeElement, [&] {
            const auto entry = entries.constFind(entryUuid);
            if (entry == entries.cend() || !entry->elements.contains(elementUuid))
                return false;
            const ElementValues stored = entry->elements.value(elementUuid);
            for (const UpdateType &type : stored.getUpdateTypes()) {
                if (type != UpdateType::RawData || hint == LoadDataHint::LoadAtOnce)
                    values.insert(type, stored.value(type));
            }
            return true;
        });
    }
    QByteArray getElementRawData(const QString &entryUuid, const QString &elementUuid) const override
    {
        QByteArray raw;
        change(Operation::GetElementRawData, [&] {
            const auto entry = entries.constFind(entryUuid);
            return entry != entries.cend() && entry->elements.value(elementUuid).getRawData(raw);
        });
        return raw;
    }
    bool removeEntry(const QString &uuid) override
    {
        return change(Operation::RemoveEntry, [&] { return entries.remove(uuid) > 0; });
    }
    bool updateElement(const QString &entryUuid, const QString &elementUuid,
                       const ElementValues &values) override
    {
        return change(Operation::UpdateElement,
                      [&] { return values.isEmpty() || update(entryUuid, elementUuid, values); });
    }
    bool updateElementValue(const QString &entryUuid, const QString &elementUuid, const UpdateType &type,
                            const QVariant &value) override
    {
        ElementValues values;
        values.insert(type, value);
        return change(Operation::UpdateElementValue, [&] { return update(entryUuid, elementUuid, values); });
    }

private:
    struct Entry
    {
        EntryRecord record;
        QStringList order;
        QHash<QString, ElementValues> elements;
    };
    struct Arranged
    {
        Fault fault;
        int before; // calls that are still sound
        int times; // calls that suffer from then on; Always for all
        int milliseconds;
    };

    bool setConnected(bool on)
    {
        const QMutexLocker locker(&mutex);
        connected = on;
        return true;
    }
    template <class Body>
    bool change(Operation operation, const Body &body) const
    {
        if (!suffer(operation))
            return false;
        const QMutexLocker locker(&mutex);
        return connected && body();
    }
    bool update(const QString &entryUuid, const QString &elementUuid, const ElementValues &values)
    {
        const auto entry = entries.find(entryUuid);
        return entry != entries.end() && entry->elements.contains(elementUuid)
            && put(entry->elements[elementUuid], values);
    }
    static bool put(ElementValues &stored, const ElementValues &values)
    {
        for (const UpdateType &type : values.getUpdateTypes()) {
            if (type != UpdateType::ParsedData)
                stored.insert(type, values.value(type));
        }
        return true;
    }

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
        case Fault::Delay:
            wait(now.milliseconds);
            return true;
        case Fault::Hang:
            ++hangingCalls;
            wait(Patience);
            --hangingCalls;
            return true;
        }
        return true;
    }
    // Until release(), but not longer than \a milliseconds. With faultMutex held.
    void wait(int milliseconds) const
    {
        const QDeadlineTimer deadline(milliseconds);
        const int before = releases;
        while (releases == before && released.wait(&faultMutex, deadline)) { }
    }

    mutable QMutex mutex; // the medium
    bool connected = false;
    QHash<QString, Entry> entries;
    std::atomic<bool> miscounting{false};

    mutable QMutex faultMutex; // what follows
    mutable QWaitCondition released;
    mutable QMap<Operation, Arranged> faults;
    mutable QMap<Operation, int> counts;
    mutable int hangingCalls = 0;
    int releases = 0;
};

} // namespace TestSupport
