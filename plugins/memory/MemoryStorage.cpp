#include "MemoryStorage.h"

#include <appdata/storages/StorageTypes.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>

namespace Tessellum::Plugins::Memory {

using AppData::DataElementUpdateType;
using AppData::LoadDataHint;

/*! What \a work returns, called with the mutex held; false, 0 or empty where the storage is not connected. */
template <class Work>
auto MemoryStorage::whileConnected(const Work &work) const
{
    if (!connected) { // before the mutex is taken: nothing is logged with it held
        Shared::Logging::FrameworkLog().warning()
            << "MemoryStorage::whileConnected() the storage is not connected";
        return decltype(work())();
    }
    const QMutexLocker lock(&mutex);
    return work();
}

QStringList MemoryStorage::getEntryTypes() const
{
    return AppData::Storages::StorageTypes::Memory();
}

bool MemoryStorage::connectStorage()
{
    connected = true;
    return true;
}

bool MemoryStorage::disconnectStorage()
{
    connected = false;
    return true;
}

bool MemoryStorage::serializeEntry(const QString &uuid, const EntryRecord &record)
{
    return whileConnected([&] {
        entries[uuid].record = record;
        return true;
    });
}

bool MemoryStorage::serializeElement(const QString &entryUuid, const QString &elementUuid,
                                     const ElementValues &values)
{
    return whileConnected([&] {
        const auto entry = entries.find(entryUuid);
        if (entry == entries.end())
            return false;
        if (!entry->elements.contains(elementUuid))
            entry->order.append(elementUuid);
        ElementValues &stored = entry->elements[elementUuid] = values;
        stored.setInfo(nullptr); // of the element in the tree, which the medium has no business with
        stored.remove(DataElementUpdateType::ParsedData);
        return true;
    });
}

quint64 MemoryStorage::getEntries(QHash<QString, EntryRecord> &found) const
{
    found.clear();
    return whileConnected([&] {
        for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
            found.insert(entry.key(), entry->record);
        return quint64(found.size());
    });
}

bool MemoryStorage::deserializeEntry(const QString &uuid, EntryRecord &record) const
{
    return whileConnected([&] {
        const auto entry = entries.constFind(uuid);
        if (entry == entries.cend())
            return false;
        record = entry->record;
        return true;
    });
}

quint64 MemoryStorage::getElementIds(const QString &entryUuid, QStringList &uuids) const
{
    uuids.clear();
    return whileConnected([&] {
        uuids = entries.value(entryUuid).order;
        return quint64(uuids.size());
    });
}

bool MemoryStorage::deserializeElement(const QString &entryUuid, const QString &elementUuid,
                                       ElementValues &values, const LoadDataHint &hint) const
{
    return whileConnected([&] {
        const auto elements = entries.value(entryUuid).elements;
        const ElementValues stored = elements.value(elementUuid);
        for (const DataElementUpdateType &type : stored.getUpdateTypes()) {
            if (type != DataElementUpdateType::RawData || hint == LoadDataHint::LoadAtOnce)
                values.insert(type, stored.value(type));
        }
        return elements.contains(elementUuid);
    });
}

QByteArray MemoryStorage::getElementRawData(const QString &entryUuid, const QString &elementUuid) const
{
    return whileConnected([&] {
        QByteArray raw;
        entries.value(entryUuid).elements.value(elementUuid).getRawData(raw);
        return raw;
    });
}

bool MemoryStorage::removeEntry(const QString &uuid)
{
    return whileConnected([&] { return entries.remove(uuid) > 0; });
}

bool MemoryStorage::updateElement(const QString &entryUuid, const QString &elementUuid,
                                  const ElementValues &values)
{
    return values.isEmpty() || whileConnected([&] {
               if (!entries.value(entryUuid).elements.contains(elementUuid))
                   return false;
               ElementValues &stored = entries[entryUuid].elements[elementUuid];
               for (const DataElementUpdateType &type : values.getUpdateTypes()) {
                   if (type != DataElementUpdateType::ParsedData)
                       stored.insert(type, values.value(type));
               }
               return true;
           });
}

bool MemoryStorage::updateElementValue(const QString &entryUuid, const QString &elementUuid,
                                       const DataElementUpdateType &type, const QVariant &value)
{
    ElementValues values;
    values.insert(type, value);
    return updateElement(entryUuid, elementUuid, values);
}

} // namespace Tessellum::Plugins::Memory
