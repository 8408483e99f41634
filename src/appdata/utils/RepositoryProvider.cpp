#include <appdata/storages/Storage.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryProvider.h>
#include <appdata/utils/TaskFactories.h>
#include <notification/RepositoryLocks.h>
#include <notification/utils/MakeNode.h>

namespace Tessellum::AppData::utils {

using Notification::utils::MakeNode;
using Shared::Hierarchy::HierarchyNodeInstance;

/*! What lives from a start to a stop. */
struct RepositoryProvider::Run
{
    std::shared_ptr<Notification::utils::NotificationProvider> notifications;
};

RepositoryProvider::RepositoryProvider()
    : root(MakeNode<HierarchyNodeInstance>())
    , pool(QStringLiteral("AppDataRepository"), MakeCreateTaskFactory(*this), MakeUpdateTaskFactory(*this),
           MakeDeleteTaskFactory(*this), QThread::idealThreadCount(), true)
{ }

RepositoryProvider::~RepositoryProvider() = default;

void RepositoryProvider::endTasks()
{
    pool.stopAndWait();
    // With no lock held: this is foreign code, and it writes what it has queued.
    for (const auto &storage : FindStorages())
        storage->getImplementation()->disconnectStorage();
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
    if (!isActive()) {
        const auto next = std::make_shared<Run>();
        next->notifications = std::make_shared<Notification::utils::NotificationProvider>();
        exchangeRun(next);
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
    ended = exchangeRun(nullptr);
}

bool RepositoryProvider::isActive() const
{
    return currentRun() != nullptr;
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
    const auto present = currentRun();
    return present ? present->notifications : nullptr;
}

std::shared_ptr<const RepositoryProvider::Run> RepositoryProvider::currentRun() const
{
    const QMutexLocker locker(&runMutex);
    return run;
}

std::shared_ptr<const RepositoryProvider::Run>
RepositoryProvider::exchangeRun(const std::shared_ptr<const Run> &next)
{
    const QMutexLocker locker(&runMutex);
    return std::exchange(run, next);
}

} // namespace Tessellum::AppData::utils
