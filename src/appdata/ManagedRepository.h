#pragma once

#include <appdata/interfaces/RepositoryInterface.h>
#include <shared/localization/LocalizationInterface.h>

class QReadWriteLock;

namespace Tessellum::AppData {

/*!
 * The data repository that an application gets: fronts that take the library's lock for each look-up and
 * start, and that give handles in place of nodes.
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

    QStringList getStorageTypes() const override;
    std::shared_ptr<const Interfaces::RepositoryStorageInterface> getStorageInterface() const override;
    std::shared_ptr<Interfaces::RepositoryStorageInterface> getStorageInterface() override;
    std::shared_ptr<const Interfaces::RepositoryMemoryStrategyInterface>
    getMemoryStrategyInterface() const override;
    std::shared_ptr<Interfaces::RepositoryMemoryStrategyInterface> getMemoryStrategyInterface() override;
    std::shared_ptr<const Interfaces::RepositoryDataEntryInterface> getDataEntryInterface() const override;
    std::shared_ptr<Interfaces::RepositoryDataEntryInterface> getDataEntryInterface() override;
    std::shared_ptr<const Notification::Interfaces::NotificationInterface>
    getNotificationInterface() const override;
    std::shared_ptr<Notification::Interfaces::NotificationInterface> getNotificationInterface() override;
    std::shared_ptr<const Interfaces::DataElementRegistrationInterface>
    getElementRegistrationInterface() const override;
    std::shared_ptr<Interfaces::DataElementRegistrationInterface> getElementRegistrationInterface() override;

    /*! Whether the providers of the run that this object was made in have gone. */
    bool isExpired() const;

private:
    const std::shared_ptr<Shared::Localization::LocalizationInterface> localization;
    std::weak_ptr<const void> run; ///< lives as long as the providers do
    std::shared_ptr<Interfaces::RepositoryStorageInterface> storages;
    std::shared_ptr<Interfaces::RepositoryMemoryStrategyInterface> memoryStrategies;
    std::shared_ptr<Interfaces::RepositoryDataEntryInterface> entries;
    std::shared_ptr<Notification::Interfaces::NotificationInterface> notifications;
    std::shared_ptr<Interfaces::DataElementRegistrationInterface> registration;
};

} // namespace Tessellum::AppData
