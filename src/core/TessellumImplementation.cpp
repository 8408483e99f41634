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
    const std::shared_ptr<AppConfig::ManagedRepository> present = std::atomic_load(&appConfigRepository);
    if (present && !present->isExpired())
        return true;
    // Made with the lock free, since its constructor fetches the providers under the read lock.
    std::atomic_store(&appConfigRepository,
                      std::make_shared<AppConfig::ManagedRepository>(localization, &Core::appConfigLock()));
    return true;
}

void TessellumImplementation::releaseRepositories()
{
    std::atomic_store(&appConfigRepository, std::shared_ptr<AppConfig::ManagedRepository>());
    std::atomic_store(&appDataRepository, std::shared_ptr<AppData::Interfaces::RepositoryInterface>());
}

} // namespace Tessellum
