#pragma once

#include <appdata/interfaces/DataEntryInterface.h>

#include <QHash>
#include <QList>
#include <QVariant>

namespace Tessellum::AppData::Interfaces {

/*!
 * The entries of the data repository. Threads: any; no lock may be held.
 *
 * An entry belongs to the pair of its classification and its name, which may have one entry in each storage.
 * Classification and name joined by the path separator are the pair's path, so ("a.b", "c") and ("a", "b.c")
 * are one pair.
 */
class TESSELLUM_EXPORT RepositoryDataEntryInterface
{
public:
    using EntryPtr = std::shared_ptr<DataEntryInterface>;
    using ConstEntryPtr = std::shared_ptr<const DataEntryInterface>;

    /*! What stands for all entries of a pair; null without one. */
    virtual ConstEntryPtr getDataEntry(const QString &classification, const QString &name) const = 0;
    virtual EntryPtr getDataEntry(const QString &classification, const QString &name) = 0;
    virtual ConstEntryPtr getDataEntry(const QString &uuid) const = 0;
    virtual EntryPtr getDataEntry(const QString &uuid) = 0;
    /*! The entries of the pairs whose paths match, each once, in no promised order. */
    virtual QList<EntryPtr> getDataEntries(const QString &pattern) const = 0;
    /*! Adds an entry without a limit, or of one element, and waits for that; null where it fails. \a storage
     * is a name, empty for a volatile entry. */
    virtual EntryPtr addDataEntry(const QString &storage, const QString &classification, const QString &name,
                                  const CategoryType &categoryType, const QString &categoryDetail,
                                  const PersistenceType &persistence, const bool &singleElement)
        = 0;
    /*! As above, from values under the keys of EntryProperties. */
    virtual EntryPtr addDataEntryExtended(const QString &storage, const QHash<QString, QVariant> &properties)
        = 0;
    /*! Removes the entries that getDataEntries() finds, from the tree and from their media; their number. */
    virtual int removeDataEntries(const QString &pattern) = 0;
    /*! Removes an entry, or with the uuid of a pair all of its entries; whether there was anything. */
    virtual bool removeDataEntry(const QString &uuid) = 0;
    /*! Removes an entry from one medium alone. */
    virtual bool removeDataEntryFromStorage(const QString &storageName, const QString &uuid) = 0;
    virtual ~RepositoryDataEntryInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
