#include <appdata/ManagedRepository.h>
#include <appdata/utils/RepositoryProvider.h>
#include <appdata/utils/WrappedElementRegistrationProvider.h>
#include <appdata/utils/WrappedRepositoryDataEntryProvider.h>
#include <appdata/utils/WrappedRepositoryMemoryStrategyProvider.h>
#include <appdata/utils/WrappedRepositoryStorageProvider.h>
#include <notification/utils/WrappedNotificationProvider.h>

namespace Tessellum::AppData {

using utils::RepositoryProvider;

ManagedRepository::ManagedRepository(
    const std::shared_ptr<Shared::Localization::LocalizationInterface> &localizationInterface,
    QReadWriteLock *lock)
    : localization(localizationInterface)
{
    const RepositoryProvider &provider = *RepositoryProvider::getInstance();
    run = provider.getDataEntryProvider();
    storages = std::make_shared<utils::WrappedRepositoryStorageProvider>(provider.getStorageProvider(), lock);
    memoryStrategies = std::make_shared<utils::WrappedRepositoryMemoryStrategyProvider>(
        provider.getMemoryStrategyProvider(), lock);
    entries
        = std::make_shared<utils::WrappedRepositoryDataEntryProvider>(provider.getDataEntryProvider(), lock);
    notifications = std::make_shared<Notification::utils::WrappedNotificationProvider>(
        provider.getNotificationProvider(), lock);
    registration = std::make_shared<utils::WrappedElementRegistrationProvider>(
        provider.getRegistrationProvider(), lock);
}

ManagedRepository::~ManagedRepository() = default;

QStringList ManagedRepository::getStorageTypes() const
{
    return RepositoryProvider::getInstance()->getStorageTypes();
}

std::shared_ptr<const Interfaces::RepositoryStorageInterface> ManagedRepository::getStorageInterface() const
{
    return storages;
}

std::shared_ptr<Interfaces::RepositoryStorageInterface> ManagedRepository::getStorageInterface()
{
    return storages;
}

std::shared_ptr<const Interfaces::RepositoryMemoryStrategyInterface>
ManagedRepository::getMemoryStrategyInterface() const
{
    return memoryStrategies;
}

std::shared_ptr<Interfaces::RepositoryMemoryStrategyInterface> ManagedRepository::getMemoryStrategyInterface()
{
    return memoryStrategies;
}

std::shared_ptr<const Interfaces::RepositoryDataEntryInterface>
ManagedRepository::getDataEntryInterface() const
{
    return entries;
}

std::shared_ptr<Interfaces::RepositoryDataEntryInterface> ManagedRepository::getDataEntryInterface()
{
    return entries;
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

std::shared_ptr<const Interfaces::DataElementRegistrationInterface>
ManagedRepository::getElementRegistrationInterface() const
{
    return registration;
}

std::shared_ptr<Interfaces::DataElementRegistrationInterface>
ManagedRepository::getElementRegistrationInterface()
{
    return registration;
}

bool ManagedRepository::isExpired() const
{
    return run.expired();
}

} // namespace Tessellum::AppData
