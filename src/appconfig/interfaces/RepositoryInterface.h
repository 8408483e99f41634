#pragma once

#include <appconfig/interfaces/AttributesManipulationInterface.h>
#include <appconfig/interfaces/AttributesQueryInterface.h>
#include <appconfig/interfaces/RepositoryAttributeValidationInterface.h>
#include <appconfig/interfaces/RepositoryBackendInterface.h>
#include <notification/interfaces/NotificationInterface.h>

namespace Tessellum::AppConfig::Interfaces {

/*!
 * The configuration repository as an application sees it.
 *
 * Threads: any. The interfaces that it gives stay usable after a stop of the library and then answer empty.
 */
class TESSELLUM_EXPORT RepositoryInterface
{
public:
    /*! All type keys that createBackend() knows. */
    virtual QStringList getBackendTypes() const = 0;
    virtual QString getPathFromPathElements(const QStringList &elements) const = 0;
    virtual QStringList getPathElementsFromPath(const QString &path) const = 0;
    virtual std::shared_ptr<const RepositoryBackendInterface> getBackendInterface() const = 0;
    virtual std::shared_ptr<RepositoryBackendInterface> getBackendInterface() = 0;
    virtual std::shared_ptr<AttributesQueryInterface> getQueryInterface() const = 0;
    virtual std::shared_ptr<const AttributesManipulationInterface> getManipulationInterface() const = 0;
    virtual std::shared_ptr<AttributesManipulationInterface> getManipulationInterface() = 0;
    virtual std::shared_ptr<const Notification::Interfaces::NotificationInterface>
    getNotificationInterface() const = 0;
    virtual std::shared_ptr<Notification::Interfaces::NotificationInterface> getNotificationInterface() = 0;
    virtual std::shared_ptr<const RepositoryAttributeValidationInterface> getValidationInterface() const = 0;
    virtual std::shared_ptr<RepositoryAttributeValidationInterface> getValidationInterface() = 0;
    virtual ~RepositoryInterface() = default;
};

} // namespace Tessellum::AppConfig::Interfaces
