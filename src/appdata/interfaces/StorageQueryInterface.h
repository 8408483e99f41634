#pragma once

#include <appdata/data/entries/EntrySerializeInformation.h>

#include <QHash>

namespace Tessellum::AppData::Interfaces {

/*! Asks a storage what it holds. Threads: any. */
class TESSELLUM_EXPORT StorageQueryInterface
{
public:
    /*! All entries of the medium by uuid; returns their number. */
    virtual quint64 getEntries(QHash<QString, Data::Entries::EntrySerializeInformation> &entries) const = 0;
    /*! Unknown where the medium has no such entry, NotLoaded where it is not attached. */
    virtual LoadStatus getEntryLoadStatus(const QString &uuid) const = 0;
    /*! Whether the medium has the entry, with a name and a classification. */
    virtual bool hasEntry(const QString &uuid) const = 0;
    virtual ~StorageQueryInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
