#pragma once

#include <appdata/interfaces/RepositoryInterface.h>
#include <appdata/storages/StorageFactory.h>
#include <notification/ThreadPool.h>
#include <notification/utils/CurrentRun.h>
#include <notification/utils/FrameWorker.h>
#include <notification/utils/NotificationProvider.h>
#include <shared/synchronization/Singleton.h>

namespace Tessellum::AppData::utils {

class RepositoryDataEntryProvider;
class RepositoryMemoryStrategyProvider;
class RepositoryStorageProvider;

/*!
 * The one tree of recorded data with its pool and its providers, and the table of storage types.
 *
 * Locks: appDataLock is held for writing while a start publishes the providers of a run and while a stop
 * takes them and the tree down; it is never held across a wait. The pointer to them has a mutex of its own,
 * so the getters may be called with or without appDataLock; between stop and start they answer empty.
 * pairMutex() makes each change of a pair's link, a pair's node and a storage's name one step: taken after
 * appDataLock, before the locks of nodes, and never held across a wait.
 */
class RepositoryProvider : public Interfaces::RepositoryInterface,
                           public Shared::Singleton<RepositoryProvider>,
                           public Storages::StorageFactory
{
    friend class Shared::Singleton<RepositoryProvider>;

public:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

    QStringList getStorageTypes() const override;
    std::shared_ptr<const Interfaces::RepositoryStorageInterface> getStorageInterface() const override;
    std::shared_ptr<Interfaces::RepositoryStorageInterface> getStorageInterface() override;
    std::shared_ptr<const Interfaces::RepositoryMemoryStrategyInterface>
    getMemoryStrategyInterface() const override;
    std::shared_ptr<Interfaces::RepositoryMemoryStrategyInterface> getMemoryStrategyInterface() override;
    std::shared_ptr<const Interfaces::RepositoryDataEntryInterface> getDataEntryInterface() const override;
    std::shared_ptr<Interfaces::RepositoryDataEntryInterface> getDataEntryInterface() override;
    /*! Empty: an application's notification interface comes from ManagedRepository. */
    std::shared_ptr<const Notification::Interfaces::NotificationInterface>
    getNotificationInterface() const override;
    std::shared_ptr<Notification::Interfaces::NotificationInterface> getNotificationInterface() override;
    std::shared_ptr<const Interfaces::DataElementRegistrationInterface>
    getElementRegistrationInterface() const override;
    std::shared_ptr<Interfaces::DataElementRegistrationInterface> getElementRegistrationInterface() override;

    /*! Ends all tasks and disconnects the storages, which write what they have queued. No lock may be held;
     * not for threads of the pool. */
    void endTasks();
    /*! Starts (\a stop false) or stops the repository. A start on an active one keeps what is there; a stop
     * ends the tasks first and takes the tree down. */
    void setRepositoryActive(bool stop);
    bool isActive() const;

    NodePtr getRoot() const;
    Notification::ThreadPool &getThreadPool();
    /*! The workers of remote peers' frames; their steps end with the run. */
    Notification::utils::FrameWorkers &getFrameWorkers() { return frameWorkers; }
    QMutex &pairMutex() { return pairs; }
    /*! For the library's own use: unwrapped, and empty while stopped. */
    std::shared_ptr<Notification::utils::NotificationProvider> getNotificationProvider() const;
    std::shared_ptr<RepositoryStorageProvider> getStorageProvider() const;
    std::shared_ptr<RepositoryMemoryStrategyProvider> getMemoryStrategyProvider() const;
    std::shared_ptr<RepositoryDataEntryProvider> getDataEntryProvider() const;
    std::shared_ptr<Interfaces::DataElementRegistrationInterface> getRegistrationProvider() const;

private:
    RepositoryProvider();
    ~RepositoryProvider() override;

    struct Run;

    void start();
    void stop();

    const NodePtr root;
    QMutex pairs;
    Notification::ThreadPool pool;
    Notification::utils::FrameWorkers frameWorkers;
    Notification::utils::CurrentRun<Run> run;
};

} // namespace Tessellum::AppData::utils
