#include <appdata/utils/WrappedRepositoryStorageProvider.h>
#include <appdata/utils/WrappedStorage.h>

namespace Tessellum::AppData::utils {

bool WrappedRepositoryStorageProvider::addStorage(const QString &type, const QString &name,
                                                  const Storages::StorageCreateDataDetails &location,
                                                  const Notification::CreatePoint &point,
                                                  const QString &label)
{
    return writing([&](RepositoryStorageProvider &provider) {
        return provider.addStorage(type, name, location, point, label);
    });
}

bool WrappedRepositoryStorageProvider::removeStorage(const QString &name)
{
    return writing([&](RepositoryStorageProvider &provider) { return provider.removeStorage(name); });
}

QString WrappedRepositoryStorageProvider::getStorageLabel(const QString &name) const
{
    return reading([&](const RepositoryStorageProvider &provider) { return provider.getStorageLabel(name); });
}

QStringList WrappedRepositoryStorageProvider::getStorageNames() const
{
    return reading([](const RepositoryStorageProvider &provider) { return provider.getStorageNames(); });
}

std::shared_ptr<const Interfaces::StorageInterface>
WrappedRepositoryStorageProvider::getStorage(const QString &name) const
{
    return wrapped<WrappedStorage>(
        [&](RepositoryStorageProvider &provider) { return provider.getStorage(name); });
}

std::shared_ptr<Interfaces::StorageInterface>
WrappedRepositoryStorageProvider::getStorage(const QString &name)
{
    return wrapped<WrappedStorage>(
        [&](RepositoryStorageProvider &provider) { return provider.getStorage(name); });
}

} // namespace Tessellum::AppData::utils
