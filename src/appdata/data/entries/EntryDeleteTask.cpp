#include <appconfig/utils/LiveNode.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/utils/ElementPaths.h>
#include <appdata/data/entries/EntryDeleteTask.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/storages/utils/DetachEntry.h>
#include <appdata/utils/LoadStatusMirror.h>
#include <notification/utils/ExceptionBarrier.h>
#include <notification/utils/PoolWait.h>
#include <shared/hierarchy/HierarchyStringPath.h>

namespace Tessellum::AppData::Data::Entries {

using AppData::utils::LoadStatusMirror;
using Elements::Element;
using Notification::DeleteObserver;
using Notification::DeletePoint;
using Notification::utils::WaitForTask;
using Shared::Hierarchy::HierarchyNode;

EntryDeleteTask::EntryDeleteTask(Notification::ThreadPool &taskPool, const Examiners &deleteExaminer,
                                 const std::weak_ptr<HierarchyNode> &entry, const QString &taskPath,
                                 const QVariant &deleteData, const DeletePoint &waitPoint)
    : DeleteTask(entry, taskPath, deleteData)
    , pool(taskPool)
    , examiner(deleteExaminer)
    , observer(
          makeObserver(waitPoint, [this](const ResultType &report) { handleDeleteNotification(report); }))
{ }

DeleteObserver::ResultType EntryDeleteTask::runDelete()
{
    auto entry = std::dynamic_pointer_cast<Entry>(AppConfig::utils::LockLiveNode(root));
    if (!entry) {
        observer->report({DeletePoint::Begin, false});
        return observer->getResult();
    }
    const QString fullPath = entry->getNodePath()->getFullPath();
    paths = QStringList{fullPath, entry->getPairPath()};
    paths.removeDuplicates();
    observer->report({DeletePoint::Begin, true});
    bool removed = false;
    Notification::utils::RunGuarded("EntryDeleteTask", [&] {
        if (std::dynamic_pointer_cast<ClassificationNameEntry>(entry))
            removeEntriesOfPair(entry->getPairPath());
        else
            removeEntry(entry, fullPath);
        removed = true;
    });
    entry.reset();
    observer->report({DeletePoint::Done, removed});
    return observer->getResult();
}

std::shared_ptr<DeleteObserver> EntryDeleteTask::getObserver()
{
    return observer;
}

void EntryDeleteTask::removeEntriesOfPair(const QString &pairPath) const
{
    for (const auto &entry : utils::EntriesOfPair(pairPath))
        WaitForTask(
            pool,
            pool.startDeleteTask(entry, entry->getNodePath()->getFullPath(), QVariant(), DeletePoint::Done));
}

void EntryDeleteTask::removeElements(Entry &entry) const
{
    const QString prefix = path + HierarchyNode::GetHierarchyNodePathSeparator();
    for (const auto &child : entry.getChildren(false)) {
        const auto element = std::dynamic_pointer_cast<Element>(child);
        if (!element)
            continue;
        WaitForTask(pool,
                    pool.startDeleteTask(element, prefix + element->getId(), QVariant(), DeletePoint::Done));
    }
}

void EntryDeleteTask::removeEntry(const std::shared_ptr<Entry> &entry, const QString &fullPath) const
{
    removeElements(*entry);
    Storages::utils::DetachEntry(entry);
    // Behind the flag, or a status that is on its way could bring the attribute back.
    WaitForTask(AppConfig::utils::RepositoryProvider::getInstance()->getThreadPool(),
                LoadStatusMirror::StartRemoval(fullPath));
}

void EntryDeleteTask::handleDeleteNotification(const ResultType &result) const
{
    if (examiner && !examiner->isEmpty())
        Elements::utils::NotifyPaths(examiner, paths, result.first, result.second);
}

} // namespace Tessellum::AppData::Data::Entries
