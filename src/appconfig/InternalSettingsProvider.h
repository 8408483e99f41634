#pragma once

#include <shared/foundation/SettingsWrapper.h>
#include <shared/TessellumExport.h>

#include <memory>

namespace Tessellum::AppConfig {

/*! Gives access to the library's own settings in the tree. Any thread may call. */
class TESSELLUM_EXPORT InternalSettingsProvider
{
public:
    /*! With an empty \a settingsWrapper the one of the configuration repository is used. */
    explicit InternalSettingsProvider(
        const std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> &settingsWrapper = nullptr);
    virtual ~InternalSettingsProvider() = default;

    std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> settings() const;

private:
    std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> wrapper;
};

} // namespace Tessellum::AppConfig
