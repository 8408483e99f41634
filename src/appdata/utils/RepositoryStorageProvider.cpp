#include <appdata/storages/Storage.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryStorageProvider.h>
#include <notification/utils/PoolWait.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppData::utils {

using Notification::CreatePoint;
using Notification::utils::WaitForSuccess;
using Shared::Hierarchy::HierarchyNode;
using Storages::StorageCreateDataDetails;

RepositoryStorageProvider::RepositoryStorageProvider(const std::shared_ptr<HierarchyNode> &repositoryRoot,
                                                     Notification::ThreadPool *taskPool)
    : root(repositoryRoot)
    , pool(taskPool)
{ }

bool RepositoryStorageProvider::addStorage(const QString &type, const QString &name,
                                           const StorageCreateDataDetails &location, const CreatePoint &point,
                                           const QString &label)
{
    // The storage would bear the last element alone, and nobody would find it under the whole.
    if (!pool->isRunning() || name.contains(HierarchyNode::GetHierarchyNodePathSeparator()))
        return false;
    const Storages::StorageCreateData data(name, type, label, location);
    return WaitForSuccess(*pool, pool->startCreateTask(root, name, QVariant::fromValue(data), point));
}

bool RepositoryStorageProvider::removeStorage(const QString &name)
{
    const auto storage = FindStorage(name);
    if (!storage) {
        Shared::Logging::FrameworkLog().warning()
            << "RepositoryStorageProvider::removeStorage() storage with name=" << name << " does not exist";
        return false;
    }
    return WaitForSuccess(*pool,
                          pool->startDeleteTask(std::shared_ptr<HierarchyNode>(storage), name, QVariant(),
                                                Notification::DeletePoint::Done));
}

QString RepositoryStorageProvider::getStorageLabel(const QString &name) const
{
    const auto storage = FindStorage(name);
    return storage ? storage->getLabel() : QString();
}

QStringList RepositoryStorageProvider::getStorageNames() const
{
    return StorageNames();
}

std::shared_ptr<const Interfaces::StorageInterface>
RepositoryStorageProvider::getStorage(const QString &name) const
{
    return FindStorage(name);
}

std::shared_ptr<Interfaces::StorageInterface> RepositoryStorageProvider::getStorage(const QString &name)
{
    return FindStorage(name);
}

} // namespace Tessellum::AppData::utils
