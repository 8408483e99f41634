#pragma once

#include <appdata/interfaces/RepositoryStorageInterface.h>
#include <notification/ThreadPool.h>

namespace Tessellum::AppData::Storages {
class Storage;
}

namespace Tessellum::AppData::utils {

/*! The work behind RepositoryStorageInterface; holds no lock. */
class RepositoryStorageProvider : public Interfaces::RepositoryStorageInterface
{
public:
    RepositoryStorageProvider(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &root,
                              Notification::ThreadPool *pool);

    bool addStorage(const QString &type, const QString &name,
                    const Storages::StorageCreateDataDetails &location,
                    const Notification::CreatePoint &point, const QString &label) override;
    bool removeStorage(const QString &name) override;
    QString getStorageLabel(const QString &name) const override;
    QStringList getStorageNames() const override;
    std::shared_ptr<const Interfaces::StorageInterface> getStorage(const QString &name) const override;
    std::shared_ptr<Interfaces::StorageInterface> getStorage(const QString &name) override;

private:
    const std::shared_ptr<Shared::Hierarchy::HierarchyNode> root;
    Notification::ThreadPool *const pool;
};

} // namespace Tessellum::AppData::utils
