#include <appconfig/backends/Backend.h>
#include <appconfig/backends/BackendReference.h>
#include <appconfig/backends/ObjectPropertiesBackend.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/WrappedRepositoryBackendProvider.h>
#include <notification/utils/PoolWait.h>

namespace Tessellum::AppConfig::utils {

using Backends::Backend;

bool WrappedRepositoryBackendProvider::createBackend(const QString &type, const QString &name,
                                                     const Backends::BackendCreateDataDetails &details,
                                                     const Notification::CreatePoint &waitPoint)
{
    // Before the lock: it may call code of the application.
    const auto bound = Backends::ObjectPropertiesBackend::BindObject(type, details);
    const auto observer = writing([&](RepositoryBackendProvider &provider) {
        return provider.startCreateBackend(type, name, bound, waitPoint);
    });
    return Notification::utils::WaitForSuccess(RepositoryProvider::getInstance()->getThreadPool(), observer);
}

QString WrappedRepositoryBackendProvider::getBackendDescription(const QString &name) const
{
    // The node is asked after the lock: a backend's class may answer with code of its own.
    const auto backend
        = reading([&](const RepositoryBackendProvider &provider) { return provider.findBackend(name); });
    return backend ? backend->getDescription() : QString();
}

bool WrappedRepositoryBackendProvider::saveBackend(const QString &name)
{
    std::shared_ptr<Backend> backend;
    const bool running = writing([&](const RepositoryBackendProvider &provider) {
        backend = provider.findBackend(name);
        return true;
    });
    return running && SaveBackend(backend);
}

QStringList WrappedRepositoryBackendProvider::getBackendNames() const
{
    return reading([](const RepositoryBackendProvider &provider) { return provider.getBackendNames(); });
}

bool WrappedRepositoryBackendProvider::hasBackend(const QString &name) const
{
    return reading([&](const RepositoryBackendProvider &provider) { return provider.hasBackend(name); });
}

std::shared_ptr<Interfaces::BackendInterface>
WrappedRepositoryBackendProvider::getBackend(const QString &name) const
{
    std::shared_ptr<Backend> backend;
    const bool running = reading([&](const RepositoryBackendProvider &provider) {
        backend = provider.findBackend(name);
        return true;
    });
    if (!running)
        return nullptr;
    return std::make_shared<Backends::BackendReference>(backend);
}

} // namespace Tessellum::AppConfig::utils
