#pragma once

#include <appconfig/backends/Backend.h>

namespace Tessellum::AppConfig::Backends {

/*!
 * An INI file as two levels of attributes: [net] with port=8080 gives net.port. All values are texts; a key
 * with the path separator gives deeper levels, and comes back as it was. Attributes directly beneath the
 * backend are not saved, since they belong to no section. Any thread may call.
 */
class IniFileBackend : public Backend
{
    Q_OBJECT
public:
    using Backend::Backend;

    static QStringList TypeKeys();
    QStringList getTypeKeys() const override;

    /*!
     * Lays the sections over those of the file, so that what is in the file alone stays; see
     * Shared::WriteIniFile().
     */
    bool saveAttributes() override;

    /*! A missing file is fine; one without a single key gives false. */
    bool loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                          const Notification::CreatePoint &waitPoint) override;
};

} // namespace Tessellum::AppConfig::Backends
