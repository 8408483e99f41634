#pragma once

#include <appconfig/interfaces/RepositoryInterface.h>
#include <shared/localization/LocalizationInterface.h>

class QReadWriteLock;

namespace Tessellum::AppConfig {

/*!
 * The repository that an application gets: fronts that take the library's lock around each start and look-up,
 * and that give references in place of nodes.
 *
 * Ownership: keeps the providers weakly, so it may outlive a stop, and then answers empty also after the next
 * start. Threads: any.
 */
class ManagedRepository : public Interfaces::RepositoryInterface
{
public:
    /*! Serves the present run. \a lock is the library's and is not owned; the caller may hold it. */
    ManagedRepository(const std::shared_ptr<Shared::Localization::LocalizationInterface> &localization,
                      QReadWriteLock *lock);
    ~ManagedRepository() override;

    QStringList getBackendTypes() const override;
    QString getPathFromPathElements(const QStringList &elements) const override;
    QStringList getPathElementsFromPath(const QString &path) const override;
    std::shared_ptr<const Interfaces::RepositoryBackendInterface> getBackendInterface() const override;
    std::shared_ptr<Interfaces::RepositoryBackendInterface> getBackendInterface() override;
    std::shared_ptr<Interfaces::AttributesQueryInterface> getQueryInterface() const override;
    std::shared_ptr<const Interfaces::AttributesManipulationInterface>
    getManipulationInterface() const override;
    std::shared_ptr<Interfaces::AttributesManipulationInterface> getManipulationInterface() override;
    std::shared_ptr<const Notification::Interfaces::NotificationInterface>
    getNotificationInterface() const override;
    std::shared_ptr<Notification::Interfaces::NotificationInterface> getNotificationInterface() override;
    std::shared_ptr<const Interfaces::RepositoryAttributeValidationInterface>
    getValidationInterface() const override;
    std::shared_ptr<Interfaces::RepositoryAttributeValidationInterface> getValidationInterface() override;

    /*! Whether the providers of the run that this object was made in have gone. */
    bool isExpired() const;

private:
    QReadWriteLock *lock;
    std::weak_ptr<const void> run; ///< lives as long as the providers do
    std::shared_ptr<Interfaces::AttributesQueryInterface> query;
    std::shared_ptr<Interfaces::AttributesManipulationInterface> manipulation;
    std::shared_ptr<Interfaces::RepositoryBackendInterface> backends;
    std::shared_ptr<Interfaces::RepositoryAttributeValidationInterface> validations;
    std::shared_ptr<Notification::Interfaces::NotificationInterface> notifications;
};

} // namespace Tessellum::AppConfig
