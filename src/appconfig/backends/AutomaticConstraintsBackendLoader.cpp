#include <appconfig/backends/AutomaticConstraintsBackendLoader.h>
#include <appconfig/backends/ConstraintsBackend.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <shared/logging/FrameworkLog.h>

#include <QFile>

namespace Tessellum::AppConfig::Backends {

std::shared_ptr<Notification::CreateObserver>
AutomaticConstraintsBackendLoader(const QString &filePath, const QString &name,
                                  const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent)
{
    if (!QFile::exists(filePath))
        return nullptr;
    const auto provider = AppConfig::utils::RepositoryProvider::getInstance()->getBackendProvider();
    if (!provider) {
        Shared::Logging::FrameworkLog().warning()
            << "AutomaticConstraintsBackendLoader() unable to load '" << filePath << "' as constraints '"
            << name << "' beneath '" << parent->getNodePath()->getFullPath() << "'";
        return nullptr;
    }
    BackendCreateDataDetails details;
    details.data = filePath;
    details.description = QStringLiteral("Automatically registered constraints from: '%1'").arg(filePath);
    return provider->startCreateBackend(ConstraintsBackend::TypeKeys().constFirst(), name, details,
                                        Notification::CreatePoint::All, parent);
}

} // namespace Tessellum::AppConfig::Backends
