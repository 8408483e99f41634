#pragma once

#include <appdata/interfaces/StorageInterface.h>
#include <appdata/storages/StorageCreateData.h>
#include <notification/TaskPoints.h>

namespace Tessellum::AppData::Interfaces {

/*! The storages of the data repository. Threads: any; no lock may be held. */
class TESSELLUM_EXPORT RepositoryStorageInterface
{
public:
    /*! Makes a storage of a type key and connects it; waits for \a point, with CreatePoint::All for the first
     * report. False for an unknown type, a name that is taken or has path separators, or a medium that cannot
     * be opened. */
    virtual bool addStorage(const QString &type, const QString &name,
                            const Storages::StorageCreateDataDetails &location,
                            const Notification::CreatePoint &point, const QString &label)
        = 0;
    /*! Takes a storage with its entries off the tree and waits for that; the medium stays as it is. */
    virtual bool removeStorage(const QString &name) = 0;
    /*! Empty for an unknown name. */
    virtual QString getStorageLabel(const QString &name) const = 0;
    virtual QStringList getStorageNames() const = 0;
    /*! Null for an unknown name. */
    virtual std::shared_ptr<const StorageInterface> getStorage(const QString &name) const = 0;
    virtual std::shared_ptr<StorageInterface> getStorage(const QString &name) = 0;
    virtual ~RepositoryStorageInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
