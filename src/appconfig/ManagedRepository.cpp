#include <appconfig/ManagedRepository.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/WrappedAttributesManipulationProvider.h>
#include <appconfig/utils/WrappedAttributesQueryProvider.h>
#include <appconfig/utils/WrappedRepositoryAttributeValidationProvider.h>
#include <appconfig/utils/WrappedRepositoryBackendProvider.h>
#include <notification/utils/WrappedNotificationProvider.h>

namespace Tessellum::AppConfig {

using utils::RepositoryProvider;

ManagedRepository::ManagedRepository(
    const std::shared_ptr<Shared::Localization::LocalizationInterface> &localization,
    QReadWriteLock *repositoryLock)
    : lock(repositoryLock)
{
    const RepositoryProvider &provider = *RepositoryProvider::getInstance();
    run = provider.getQueryProvider();
    query = std::make_shared<utils::WrappedAttributesQueryProvider>(provider.getQueryProvider(), lock,
                                                                    localization);
    manipulation = std::make_shared<utils::WrappedAttributesManipulationProvider>(
        provider.getManipulationProvider(), lock);
    backends = std::make_shared<utils::WrappedRepositoryBackendProvider>(provider.getBackendProvider(), lock);
    validations = std::make_shared<utils::WrappedRepositoryAttributeValidationProvider>(
        provider.getValidationProvider(), lock);
    notifications = std::make_shared<Notification::utils::WrappedNotificationProvider>(
        provider.getNotificationProvider(), lock);
}

ManagedRepository::~ManagedRepository() = default;

QStringList ManagedRepository::getBackendTypes() const
{
    return RepositoryProvider::getInstance()->getBackendTypes();
}

QString ManagedRepository::getPathFromPathElements(const QStringList &elements) const
{
    return RepositoryProvider::getInstance()->getPathFromPathElements(elements);
}

QStringList ManagedRepository::getPathElementsFromPath(const QString &path) const
{
    return RepositoryProvider::getInstance()->getPathElementsFromPath(path);
}

std::shared_ptr<const Interfaces::RepositoryBackendInterface> ManagedRepository::getBackendInterface() const
{
    return backends;
}

std::shared_ptr<Interfaces::RepositoryBackendInterface> ManagedRepository::getBackendInterface()
{
    return backends;
}

std::shared_ptr<Interfaces::AttributesQueryInterface> ManagedRepository::getQueryInterface() const
{
    return query;
}

std::shared_ptr<const Interfaces::AttributesManipulationInterface>
ManagedRepository::getManipulationInterface() const
{
    return manipulation;
}

std::shared_ptr<Interfaces::AttributesManipulationInterface> ManagedRepository::getManipulationInterface()
{
    return manipulation;
}

std::shared_ptr<const Notification::Interfaces::NotificationInterface>
ManagedRepository::getNotificationInterface() const
{
    return notifications;
}

std::shared_ptr<Notification::Interfaces::NotificationInterface> ManagedRepository::getNotificationInterface()
{
    return notifications;
}

std::shared_ptr<const Interfaces::RepositoryAttributeValidationInterface>
ManagedRepository::getValidationInterface() const
{
    return validations;
}

std::shared_ptr<Interfaces::RepositoryAttributeValidationInterface>
ManagedRepository::getValidationInterface()
{
    return validations;
}

bool ManagedRepository::isExpired() const
{
    return run.expired();
}

} // namespace Tessellum::AppConfig
