#pragma once

#include <appdata/utils/RepositoryStorageProvider.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! The storages as an application gets them. */
class WrappedRepositoryStorageProvider : public Interfaces::RepositoryStorageInterface,
                                         private WrappedFront<RepositoryStorageProvider>
{
public:
    using WrappedFront::WrappedFront;

    bool addStorage(const QString &type, const QString &name,
                    const Storages::StorageCreateDataDetails &location,
                    const Notification::CreatePoint &point, const QString &label) override;
    bool removeStorage(const QString &name) override;
    QString getStorageLabel(const QString &name) const override;
    QStringList getStorageNames() const override;
    std::shared_ptr<const Interfaces::StorageInterface> getStorage(const QString &name) const override;
    std::shared_ptr<Interfaces::StorageInterface> getStorage(const QString &name) override;
};

} // namespace Tessellum::AppData::utils
