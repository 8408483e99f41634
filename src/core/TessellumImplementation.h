#pragma once

#include <core/CoreInterface.h>
#include <shared/localization/LocalizationInterface.h>

namespace Tessellum {

namespace AppConfig {
class ManagedRepository;
}
namespace AppData {
class ManagedRepository;
}

/*!
 * The object behind getCoreInterface(); there is one for the life of the process.
 *
 * Threads: any. The repository pointers are read and written atomically, so the getters take no lock.
 */
class TessellumImplementation : public Core::CoreInterface
{
public:
    /*! \a localization may be empty; then no repository is ever made. */
    explicit TessellumImplementation(
        const std::shared_ptr<Shared::Localization::LocalizationInterface> &localization);

    std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> getAppConfigRepository() const override;
    std::shared_ptr<AppData::Interfaces::RepositoryInterface> getAppDataRepository() const override;

    /*! Makes the repositories that are missing, or whose providers have gone; false without a localization.
     */
    bool createRepositories();
    /*! Empties the repository pointers; what an application still holds answers empty from the stop on. */
    void releaseRepositories();

private:
    const std::shared_ptr<Shared::Localization::LocalizationInterface> localization;
    std::shared_ptr<AppConfig::ManagedRepository> appConfigRepository;
    std::shared_ptr<AppData::ManagedRepository> appDataRepository;
};

} // namespace Tessellum
