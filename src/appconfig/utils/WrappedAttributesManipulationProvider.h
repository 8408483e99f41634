#pragma once

#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/ProviderFront.h>

namespace Tessellum::AppConfig::utils {

/*!
 * The application's way to create, update and delete attributes. The lock is held for writing while a task is
 * started, and for nothing else: no wait is under it, and an automatic create is a scope of its own.
 */
class WrappedAttributesManipulationProvider : public Interfaces::AttributesManipulationInterface,
                                              private ProviderFront<AttributesManipulationProvider>
{
public:
    using ProviderFront<AttributesManipulationProvider>::ProviderFront;

    bool createAttribute(const QString &path, const QVariant &value,
                         const Notification::CreatePoint &waitPoint, const int &access) override;
    bool createAttribute(const QString &path, const QVariant &value,
                         const std::shared_ptr<Interfaces::CustomAttributeDataInterface> &data,
                         const Notification::CreatePoint &waitPoint, const int &access) override;
    Notification::UpdateResult updateAttribute(const QString &path, const QVariant &value,
                                               const Notification::UpdatePoint &waitPoint) override;
    bool deleteAttribute(const QString &path, const Notification::DeletePoint &waitPoint) override;
};

} // namespace Tessellum::AppConfig::utils
