#pragma once

#include <appdata/interfaces/StorageQueryInterface.h>

namespace Tessellum::AppData::Storages {

class Storage;

/*! Asks the medium of a storage, which owns it. Nothing is locked while the medium works. */
class TESSELLUM_EXPORT StorageQueryProvider : public Interfaces::StorageQueryInterface
{
public:
    explicit StorageQueryProvider(const Storage *queriedStorage)
        : storage(queriedStorage)
    { }

    quint64 getEntries(QHash<QString, Data::Entries::EntrySerializeInformation> &entries) const override;
    LoadStatus getEntryLoadStatus(const QString &uuid) const override;
    bool hasEntry(const QString &uuid) const override;

private:
    const Storage *const storage;
};

} // namespace Tessellum::AppData::Storages
