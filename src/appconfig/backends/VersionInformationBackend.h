#pragma once

#include <appconfig/backends/Backend.h>

namespace Tessellum::AppConfig::Backends {

/*!
 * A Shared::VersionInformation::VersionInformation as attributes: one text for each of its entries,
 * "ModulePath", and the whole record as "RawVersionInformation". Only a backend made with access 1 keeps them
 * from being written. There is nothing to save. Any thread may call.
 */
class VersionInformationBackend : public Backend
{
    Q_OBJECT
public:
    using Backend::Backend;

    static QStringList TypeKeys();
    QStringList getTypeKeys() const override;
    bool saveAttributes() override;
    /*! False if the backend's data is no version record. */
    bool loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                          const Notification::CreatePoint &waitPoint) override;
};

} // namespace Tessellum::AppConfig::Backends
