#pragma once

#include <appdata/interfaces/StorageQueryInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle for asking a storage what it holds. */
class WrappedStorageQueryProvider : public Interfaces::StorageQueryInterface,
                                    private WrappedFront<Interfaces::StorageQueryInterface>
{
public:
    using WrappedFront::WrappedFront;

    quint64 getEntries(QHash<QString, Data::Entries::EntrySerializeInformation> &entries) const override;
    LoadStatus getEntryLoadStatus(const QString &uuid) const override;
    bool hasEntry(const QString &uuid) const override;
};

} // namespace Tessellum::AppData::utils
