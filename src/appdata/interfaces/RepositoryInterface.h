#pragma once

#include <appdata/interfaces/DataElementRegistrationInterface.h>
#include <appdata/interfaces/RepositoryDataEntryInterface.h>
#include <appdata/interfaces/RepositoryMemoryStrategyInterface.h>
#include <appdata/interfaces/RepositoryStorageInterface.h>
#include <notification/interfaces/NotificationInterface.h>

namespace Tessellum::AppData::Interfaces {

/*!
 * The data repository as an application sees it.
 *
 * Threads: any. The interfaces that it gives stay usable after a stop of the library and then answer empty.
 */
class TESSELLUM_EXPORT RepositoryInterface
{
public:
    /*! All type keys that addStorage() knows. */
    virtual QStringList getStorageTypes() const = 0;
    virtual std::shared_ptr<const RepositoryStorageInterface> getStorageInterface() const = 0;
    virtual std::shared_ptr<RepositoryStorageInterface> getStorageInterface() = 0;
    virtual std::shared_ptr<const RepositoryMemoryStrategyInterface> getMemoryStrategyInterface() const = 0;
    virtual std::shared_ptr<RepositoryMemoryStrategyInterface> getMemoryStrategyInterface() = 0;
    virtual std::shared_ptr<const RepositoryDataEntryInterface> getDataEntryInterface() const = 0;
    virtual std::shared_ptr<RepositoryDataEntryInterface> getDataEntryInterface() = 0;
    virtual std::shared_ptr<const Notification::Interfaces::NotificationInterface>
    getNotificationInterface() const = 0;
    virtual std::shared_ptr<Notification::Interfaces::NotificationInterface> getNotificationInterface() = 0;
    virtual std::shared_ptr<const DataElementRegistrationInterface>
    getElementRegistrationInterface() const = 0;
    virtual std::shared_ptr<DataElementRegistrationInterface> getElementRegistrationInterface() = 0;
    virtual ~RepositoryInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
