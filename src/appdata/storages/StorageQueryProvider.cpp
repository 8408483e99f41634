#include <appdata/interfaces/DataEntryInterface.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/StorageQueryProvider.h>
#include <appdata/storages/utils/CallMedium.h>

namespace Tessellum::AppData::Storages {

using utils::CallMedium;

quint64
StorageQueryProvider::getEntries(QHash<QString, Data::Entries::EntrySerializeInformation> &entries) const
{
    return CallMedium("StorageQueryProvider::getEntries()", quint64(0),
                      [&] { return storage->getImplementation()->getEntries(entries); });
}

LoadStatus StorageQueryProvider::getEntryLoadStatus(const QString &uuid) const
{
    if (!hasEntry(uuid))
        return LoadStatus::Unknown;
    const auto entry
        = std::dynamic_pointer_cast<const Interfaces::DataEntryInterface>(storage->getChildById(uuid));
    return entry ? entry->getLoadStatus() : LoadStatus::NotLoaded;
}

bool StorageQueryProvider::hasEntry(const QString &uuid) const
{
    Data::Entries::EntrySerializeInformation record;
    const bool known = CallMedium("StorageQueryProvider::hasEntry()", false, [&] {
        return storage->getImplementation()->deserializeEntry(uuid, record);
    });
    return known && !record.name.isEmpty() && !record.classification.isEmpty();
}

} // namespace Tessellum::AppData::Storages
