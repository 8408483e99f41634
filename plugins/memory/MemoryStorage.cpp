#include "MemoryStorage.h"

#include <appdata/storages/StorageTypes.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>

namespace Tessellum::Plugins::Memory {

using AppData::DataElementUpdateType;
using AppData::LoadDataHint;

MemoryStorage::MemoryStorage(const StorageCreateData &data)
    : StorageImplementation(data)
{ }

QStringList MemoryStorage::getEntryTypes() const
{
    return AppData::Storages::StorageTypes::Memory();
}

bool MemoryStorage::connectStorage()
{
    const QMutexLocker lock(&mutex);
    connected = true;
    return true;
}

bool MemoryStorage::disconnectStorage()
{
    const QMutexLocker lock(&mutex);
    connected = false;
    return true;
}

bool MemoryStorage::isConnected() const
{
    const QMutexLocker lock(&mutex);
    return connected;
}

bool MemoryStorage::serializeEntry(const QString &uuid, const EntryRecord &record)
{
    if (!checkConnection())
        return false;
    const QMutexLocker lock(&mutex);
    entries[uuid].record = record;
    return true;
}

bool MemoryStorage::serializeElement(const QString &entryUuid, const QString &elementUuid,
                                     const ElementValues &values)
{
    if (!checkConnection())
        return false;
    const QMutexLocker lock(&mutex);
    const auto entry = entries.find(entryUuid);
    if (entry == entries.end())
        return false;
    if (!entry->elements.contains(elementUuid))
        entry->order.append(elementUuid);
    ElementValues stored = values;
    stored.setInfo(nullptr); // of the element in the tree, which the medium has no business with
    stored.remove(DataElementUpdateType::ParsedData);
    entry->elements.insert(elementUuid, stored);
    return true;
}

quint64 MemoryStorage::getEntries(QHash<QString, EntryRecord> &found) const
{
    found.clear();
    if (!checkConnection())
        return 0;
    const QMutexLocker lock(&mutex);
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
        found.insert(entry.key(), entry->record);
    return quint64(found.size());
}

bool MemoryStorage::deserializeEntry(const QString &uuid, EntryRecord &record) const
{
    if (!checkConnection())
        return false;
    const QMutexLocker lock(&mutex);
    const auto entry = entries.constFind(uuid);
    if (entry == entries.cend())
        return false;
    record = entry->record;
    return true;
}

quint64 MemoryStorage::getElementIds(const QString &entryUuid, QStringList &uuids) const
{
    uuids.clear();
    if (!checkConnection())
        return 0;
    const QMutexLocker lock(&mutex);
    const auto entry = entries.constFind(entryUuid);
    if (entry != entries.cend())
        uuids = entry->order;
    return quint64(uuids.size());
}

bool MemoryStorage::deserializeElement(const QString &entryUuid, const QString &elementUuid,
                                       ElementValues &values, const LoadDataHint &hint) const
{
    if (!checkConnection())
        return false;
    const QMutexLocker lock(&mutex);
    const ElementValues *stored = find(entryUuid, elementUuid);
    if (!stored)
        return false;
    for (const DataElementUpdateType &type : stored->getUpdateTypes()) {
        if (type != DataElementUpdateType::RawData || hint == LoadDataHint::LoadAtOnce)
            values.insert(type, stored->value(type));
    }
    return true;
}

QByteArray MemoryStorage::getElementRawData(const QString &entryUuid, const QString &elementUuid) const
{
    QByteArray raw;
    if (!checkConnection())
        return raw;
    const QMutexLocker lock(&mutex);
    if (const ElementValues *stored = find(entryUuid, elementUuid))
        stored->getRawData(raw);
    return raw;
}

bool MemoryStorage::removeEntry(const QString &uuid)
{
    if (!checkConnection())
        return false;
    const QMutexLocker lock(&mutex);
    return entries.remove(uuid) > 0;
}

bool MemoryStorage::updateElement(const QString &entryUuid, const QString &elementUuid,
                                  const ElementValues &values)
{
    if (values.isEmpty())
        return true;
    if (!checkConnection())
        return false;
    const QMutexLocker lock(&mutex);
    const auto entry = entries.find(entryUuid);
    if (entry == entries.end())
        return false;
    const auto stored = entry->elements.find(elementUuid);
    if (stored == entry->elements.end())
        return false;
    for (const DataElementUpdateType &type : values.getUpdateTypes()) {
        if (type != DataElementUpdateType::ParsedData)
            stored->insert(type, values.value(type));
    }
    return true;
}

bool MemoryStorage::updateElementValue(const QString &entryUuid, const QString &elementUuid,
                                       const DataElementUpdateType &type, const QVariant &value)
{
    ElementValues values;
    values.insert(type, value);
    return updateElement(entryUuid, elementUuid, values);
}

// Before the mutex is taken: nothing is logged with it held.
bool MemoryStorage::checkConnection() const
{
    if (isConnected())
        return true;
    Shared::Logging::FrameworkLog().warning()
        << "MemoryStorage::checkConnection() the storage is not connected";
    return false;
}

// With the mutex held.
const MemoryStorage::ElementValues *MemoryStorage::find(const QString &entryUuid,
                                                        const QString &elementUuid) const
{
    const auto entry = entries.constFind(entryUuid);
    if (entry == entries.cend())
        return nullptr;
    const auto element = entry->elements.constFind(elementUuid);
    return element == entry->elements.cend() ? nullptr : &element.value();
}

} // namespace Tessellum::Plugins::Memory
