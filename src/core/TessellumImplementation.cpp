#include <appconfig/ManagedRepository.h>
#include <core/TessellumImplementation.h>
#include <notification/RepositoryLocks.h>

namespace Tessellum {

TessellumImplementation::TessellumImplementation(
    const std::shared_ptr<Shared::Localization::LocalizationInterface> &localizationInterface)
    : localization(localizationInterface)
{ }

std::shared_ptr<AppConfig::Interfaces::RepositoryInterface>
TessellumImplementation::getAppConfigRepository() const
{
    return std::atomic_load(&appConfigRepository);
}

std::shared_ptr<AppData::Interfaces::RepositoryInterface>
TessellumImplementation::getAppDataRepository() const
{
    return std::atomic_load(&appDataRepository);
}

bool TessellumImplementation::createRepositories()
{
    if (!localization)
        return false;
    const QWriteLocker locker(&Core::appConfigLock());
    const std::shared_ptr<AppConfig::ManagedRepository> present = std::atomic_load(&appConfigRepository);
    if (!present || present->isExpired()) {
        std::atomic_store(
            &appConfigRepository,
            std::make_shared<AppConfig::ManagedRepository>(localization, &Core::appConfigLock()));
    }
    return true;
}

void TessellumImplementation::releaseRepositories()
{
    // What is let go of ends after the lock.
    std::shared_ptr<AppConfig::ManagedRepository> configuration;
    std::shared_ptr<AppData::Interfaces::RepositoryInterface> data;
    {
        const QWriteLocker locker(&Core::appConfigLock());
        configuration = std::atomic_exchange(&appConfigRepository, configuration);
    }
    const QWriteLocker locker(&Core::appDataLock());
    data = std::atomic_exchange(&appDataRepository, data);
}

} // namespace Tessellum
