#include <appconfig/ManagedRepository.h>
#include <appdata/ManagedRepository.h>
#include <core/TessellumImplementation.h>
#include <notification/RepositoryLocks.h>

namespace Tessellum {

namespace {

template <class Repository>
void makeRepository(std::shared_ptr<Repository> &repository,
                    const std::shared_ptr<Shared::Localization::LocalizationInterface> &localization,
                    QReadWriteLock &lock)
{
    const QWriteLocker locker(&lock);
    const std::shared_ptr<Repository> present = std::atomic_load(&repository);
    if (!present || present->isExpired())
        std::atomic_store(&repository, std::make_shared<Repository>(localization, &lock));
}

} // namespace

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
    makeRepository(appConfigRepository, localization, Core::appConfigLock());
    makeRepository(appDataRepository, localization, Core::appDataLock());
    return true;
}

void TessellumImplementation::releaseRepositories()
{
    // What is let go of ends after the lock.
    std::shared_ptr<AppConfig::ManagedRepository> configuration;
    std::shared_ptr<AppData::ManagedRepository> data;
    {
        const QWriteLocker locker(&Core::appConfigLock());
        configuration = std::atomic_exchange(&appConfigRepository, configuration);
    }
    const QWriteLocker locker(&Core::appDataLock());
    data = std::atomic_exchange(&appDataRepository, data);
}

} // namespace Tessellum
