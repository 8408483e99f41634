#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/InternalSettingsProvider.h>

namespace Tessellum::AppData {

InternalSettingsProvider::InternalSettingsProvider(
    const std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> &settingsWrapper)
    : wrapper(settingsWrapper)
{ }

std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> InternalSettingsProvider::settings() const
{
    return wrapper ? wrapper : AppConfig::utils::RepositoryProvider::getInstance()->getSettings();
}

QString InternalSettingsProvider::getPathSeparator() const
{
    const auto present = settings();
    return present ? present->readSetting<QString>(QStringLiteral("repository"),
                                                   QStringLiteral("path_separator"), QStringLiteral("."))
                   : QString();
}

std::shared_ptr<Core::HierarchyListPattern> InternalSettingsProvider::getList(const QString &first,
                                                                              const QString &second) const
{
    return AppConfig::utils::RepositoryProvider::getInstance()->getListPattern(first, second);
}

} // namespace Tessellum::AppData
