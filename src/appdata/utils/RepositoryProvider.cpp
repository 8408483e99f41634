#include <appdata/data/utils/ElementRegistrationProvider.h>
#include <appdata/storages/remote/RemoteStorage.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageTypes.h>
#include <appdata/utils/RepositoryDataEntryProvider.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryMemoryStrategyProvider.h>
#include <appdata/utils/RepositoryProvider.h>
#include <appdata/utils/RepositoryStorageProvider.h>
#include <appdata/utils/TaskFactories.h>
#include <notification/RepositoryLocks.h>
#include <notification/utils/ExceptionBarrier.h>
#include <notification/utils/MakeNode.h>

namespace Tessellum::AppData::utils {

using Notification::utils::MakeNode;
using Shared::Hierarchy::HierarchyNodeInstance;

/*! What lives from a start to a stop. */
struct RepositoryProvider::Run
{
    std::shared_ptr<Notification::utils::NotificationProvider> notifications;
    std::shared_ptr<RepositoryStorageProvider> storages;
    std::shared_ptr<RepositoryMemoryStrategyProvider> memoryStrategies;
    std::shared_ptr<RepositoryDataEntryProvider> entries;
    std::shared_ptr<Interfaces::DataElementRegistrationInterface> registration;
};

RepositoryProvider::RepositoryProvider()
    : root(MakeNode<HierarchyNodeInstance>())
    , pool(QStringLiteral("AppDataRepository"), MakeCreateTaskFactory(*this), MakeUpdateTaskFactory(*this),
           MakeDeleteTaskFactory(*this), QThread::idealThreadCount(), true)
{
    Storages::RegisterStorage<Storages::RemoteStorage>(*this, Storages::StorageTypes::Remote());
}

RepositoryProvider::~RepositoryProvider() = default;

QStringList RepositoryProvider::getStorageTypes() const
{
    QStringList types = getRegisteredProductIdentifier();
    types.sort();
    return types;
}

std::shared_ptr<const Interfaces::RepositoryStorageInterface> RepositoryProvider::getStorageInterface() const
{
    return getStorageProvider();
}

std::shared_ptr<Interfaces::RepositoryStorageInterface> RepositoryProvider::getStorageInterface()
{
    return getStorageProvider();
}

std::shared_ptr<const Interfaces::RepositoryMemoryStrategyInterface>
RepositoryProvider::getMemoryStrategyInterface() const
{
    return getMemoryStrategyProvider();
}

std::shared_ptr<Interfaces::RepositoryMemoryStrategyInterface>
RepositoryProvider::getMemoryStrategyInterface()
{
    return getMemoryStrategyProvider();
}

std::shared_ptr<const Interfaces::RepositoryDataEntryInterface>
RepositoryProvider::getDataEntryInterface() const
{
    return getDataEntryProvider();
}

std::shared_ptr<Interfaces::RepositoryDataEntryInterface> RepositoryProvider::getDataEntryInterface()
{
    return getDataEntryProvider();
}

std::shared_ptr<const Notification::Interfaces::NotificationInterface>
RepositoryProvider::getNotificationInterface() const
{
    return nullptr;
}

std::shared_ptr<Notification::Interfaces::NotificationInterface>
RepositoryProvider::getNotificationInterface()
{
    return nullptr;
}

std::shared_ptr<const Interfaces::DataElementRegistrationInterface>
RepositoryProvider::getElementRegistrationInterface() const
{
    return getRegistrationProvider();
}

std::shared_ptr<Interfaces::DataElementRegistrationInterface>
RepositoryProvider::getElementRegistrationInterface()
{
    return getRegistrationProvider();
}

void RepositoryProvider::endTasks()
{
    frameWorkers.close();
    pool.stopAndWait();
    frameWorkers.waitForRunning();
    // With no lock held: this is foreign code, and it writes what it has queued.
    for (const auto &storage : FindStorages()) {
        Notification::utils::RunGuarded("StorageImplementation",
                                        [&] { storage->getImplementation()->disconnectStorage(); });
    }
}

void RepositoryProvider::setRepositoryActive(bool stopping)
{
    if (stopping)
        stop();
    else
        start();
}

void RepositoryProvider::start()
{
    const QWriteLocker locker(&Core::appDataLock());
    frameWorkers.open();
    if (!isActive()) {
        const auto next = std::make_shared<Run>();
        next->notifications = std::make_shared<Notification::utils::NotificationProvider>();
        next->storages = std::make_shared<RepositoryStorageProvider>(root, &pool);
        next->memoryStrategies = std::make_shared<RepositoryMemoryStrategyProvider>();
        next->entries = std::make_shared<RepositoryDataEntryProvider>(root, &pool);
        next->registration = std::make_shared<Data::utils::ElementRegistrationProvider>();
        run.exchange(next);
    }
    pool.start();
}

void RepositoryProvider::stop()
{
    pool.stopAndWait();
    QList<NodePtr> removed;
    std::shared_ptr<const Run> ended;
    const QWriteLocker locker(&Core::appDataLock()); // goes before the nodes and providers above do
    for (const auto &child : root->getChildren(false)) {
        child->setDeleteFlag();
        removed.append(child);
    }
    ended = run.exchange(nullptr);
}

bool RepositoryProvider::isActive() const
{
    return run.get() != nullptr;
}

RepositoryProvider::NodePtr RepositoryProvider::getRoot() const
{
    return root;
}

Notification::ThreadPool &RepositoryProvider::getThreadPool()
{
    return pool;
}

std::shared_ptr<Notification::utils::NotificationProvider> RepositoryProvider::getNotificationProvider() const
{
    return run.get(&Run::notifications);
}

std::shared_ptr<RepositoryStorageProvider> RepositoryProvider::getStorageProvider() const
{
    return run.get(&Run::storages);
}

std::shared_ptr<RepositoryMemoryStrategyProvider> RepositoryProvider::getMemoryStrategyProvider() const
{
    return run.get(&Run::memoryStrategies);
}

std::shared_ptr<RepositoryDataEntryProvider> RepositoryProvider::getDataEntryProvider() const
{
    return run.get(&Run::entries);
}

std::shared_ptr<Interfaces::DataElementRegistrationInterface>
RepositoryProvider::getRegistrationProvider() const
{
    return run.get(&Run::registration);
}

} // namespace Tessellum::AppData::utils
