#include <appconfig/InternalSettingsProvider.h>
#include <appconfig/utils/RepositoryProvider.h>

namespace Tessellum::AppConfig {

InternalSettingsProvider::InternalSettingsProvider(
    const std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> &settingsWrapper)
    : wrapper(settingsWrapper)
{ }

std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> InternalSettingsProvider::settings() const
{
    return wrapper ? wrapper : utils::RepositoryProvider::getInstance()->getSettings();
}

} // namespace Tessellum::AppConfig
