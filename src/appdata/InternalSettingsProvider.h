#pragma once

#include <appconfig/HierarchyListPattern.h>
#include <shared/foundation/SettingsWrapper.h>
#include <shared/TessellumExport.h>

#include <memory>

namespace Tessellum::AppData {

/*! Gives the data repository access to the library's own settings and lists. Any thread may call. */
class TESSELLUM_EXPORT InternalSettingsProvider
{
public:
    /*! With an empty \a settingsWrapper the one of the configuration repository is used. */
    explicit InternalSettingsProvider(
        const std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> &settingsWrapper = nullptr);
    virtual ~InternalSettingsProvider() = default;

    std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> settings() const;
    /*! The setting "path_separator"; empty without settings. */
    QString getPathSeparator() const;
    /*! The list "first.second" of the configuration; null while it is stopped. */
    std::shared_ptr<Core::HierarchyListPattern> getList(const QString &first, const QString &second) const;

private:
    std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> wrapper;
};

} // namespace Tessellum::AppData
