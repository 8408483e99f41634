#include <appdata/utils/WrappedStorageQueryProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::StorageQueryInterface;

quint64 WrappedStorageQueryProvider::getEntries(
    QHash<QString, Data::Entries::EntrySerializeInformation> &entries) const
{
    return reading([&](const StorageQueryInterface &storage) { return storage.getEntries(entries); });
}

LoadStatus WrappedStorageQueryProvider::getEntryLoadStatus(const QString &uuid) const
{
    return reading([&](const StorageQueryInterface &storage) { return storage.getEntryLoadStatus(uuid); });
}

bool WrappedStorageQueryProvider::hasEntry(const QString &uuid) const
{
    return reading([&](const StorageQueryInterface &storage) { return storage.hasEntry(uuid); });
}

} // namespace Tessellum::AppData::utils
