#include <appconfig/attributes/Attribute.h>
#include <appconfig/utils/LiveNode.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/InternalSettingsProvider.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageDeleteTask.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <appdata/storages/utils/DetachEntry.h>
#include <appdata/storages/utils/StorageNames.h>
#include <appdata/utils/LoadStatusMirror.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/NotifyExaminers.h>
#include <notification/utils/PoolWait.h>
#include <shared/hierarchy/HierarchyStringPath.h>

#include <QMutexLocker>

namespace Tessellum::AppData::Storages {

using AppConfig::Attributes::Attribute;
using AppData::utils::LoadStatusMirror;
using AppData::utils::RepositoryProvider;
using Data::Entries::Entry;
using Notification::DeleteObserver;
using Notification::DeletePoint;
using Shared::Hierarchy::HierarchyNode;

namespace {

void RemoveName(const QString &name)
{
    const QMutexLocker locker(&RepositoryProvider::getInstance()->pairMutex());
    if (const auto names = utils::NameList())
        names->removeElementFromList(name);
}

/*! Until then nobody else can take the name. */
void RemoveLinkOfName(const QString &name)
{
    const QMutexLocker locker(&RepositoryProvider::getInstance()->pairMutex());
    const auto link = std::dynamic_pointer_cast<Attribute>(
        RepositoryProvider::getInstance()->getRoot()->getChildById(name));
    if (!link)
        return;
    // Pairs whose classification is the storage's name hang beneath it.
    if (link->getNumberOfChildren() > 0)
        link->setDetails(Attribute::Details());
    else
        link->markForDeletion();
}

void DetachEntries(const Storage &storage)
{
    for (const auto &child : storage.children()) {
        if (const auto entry = std::dynamic_pointer_cast<Entry>(child))
            utils::DetachEntry(entry);
    }
}

void Remove(const std::shared_ptr<Storage> &storage, const QString &fullPath)
{
    RemoveName(storage->getName());
    DetachEntries(*storage);
    storage->setDeleteFlag();
    // Those that were attached meanwhile; whoever comes later sees the flag.
    DetachEntries(*storage);
    RemoveLinkOfName(storage->getName());
    Notification::utils::WaitForTask(AppConfig::utils::RepositoryProvider::getInstance()->getThreadPool(),
                                     LoadStatusMirror::StartRemoval(fullPath));
    // What it has queued is to be seen by the next storage on the same medium.
    utils::CallMedium("StorageDeleteTask::runDelete()", false,
                      [&] { return storage->getImplementation()->disconnectStorage(); });
}

} // namespace

StorageDeleteTask::StorageDeleteTask(const Examiners &deleteExaminer,
                                     const std::weak_ptr<HierarchyNode> &node, const QString &taskPath,
                                     const QVariant &deleteData, const DeletePoint &waitPoint)
    : DeleteTask(node, taskPath, deleteData)
    , examiner(deleteExaminer)
    , observer(
          makeObserver(waitPoint, [this](const ResultType &report) { handleDeleteNotification(report); }))
{ }

DeleteObserver::ResultType StorageDeleteTask::runDelete()
{
    auto storage = std::dynamic_pointer_cast<Storage>(AppConfig::utils::LockLiveNode(root));
    if (storage)
        resultPaths = QStringList{storage->getNodePath()->getFullPath(), storage->getName()};
    observer->report({DeletePoint::Begin, storage != nullptr});
    if (!storage)
        return observer->getResult();
    Remove(storage, resultPaths.constFirst());
    storage.reset();
    observer->report({DeletePoint::Done, true});
    return observer->getResult();
}

std::shared_ptr<DeleteObserver> StorageDeleteTask::getObserver()
{
    return observer;
}

void StorageDeleteTask::handleDeleteNotification(const ResultType &result) const
{
    if (!examiner || examiner->isEmpty())
        return;
    for (const QString &resultPath : resultPaths)
        Notification::utils::NotifyExaminers(examiner, resultPath, result.first, result.second);
}

} // namespace Tessellum::AppData::Storages
