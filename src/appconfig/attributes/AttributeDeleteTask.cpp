#include <appconfig/attributes/Attribute.h>
#include <appconfig/attributes/AttributeDeleteTask.h>
#include <appconfig/backends/Backend.h>
#include <appconfig/utils/GlobalPoolJobs.h>
#include <appconfig/utils/LiveNode.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/utils/NotifyExaminers.h>
#include <shared/hierarchy/HierarchyNodeLink.h>

namespace Tessellum::AppConfig::Attributes {

using Notification::DeleteObserver;
using Notification::DeletePoint;
using Shared::Hierarchy::HierarchyNode;
using NodePtr = std::shared_ptr<HierarchyNode>;

namespace {

/*! Takes a node off the tree, and the name of a backend off the list of names. */
void MarkForDeletion(HierarchyNode &node)
{
    if (auto *const attribute = dynamic_cast<Attribute *>(&node)) {
        attribute->markForDeletion();
        return;
    }
    const auto *const backend = dynamic_cast<Backends::Backend *>(&node);
    const auto backends = AppConfig::utils::RepositoryProvider::getInstance()->getBackendProvider();
    if (backend && backends)
        backends->forgetBackend(*backend);
    node.setDeleteFlag();
}

} // namespace

AttributeDeleteTask::AttributeDeleteTask(Notification::ThreadPool &taskPool, const Examiners &deleteExaminer,
                                         const std::weak_ptr<HierarchyNode> &node, const QString &taskPath,
                                         const QVariant &deleteData, const DeletePoint &waitPoint)
    : DeleteTask(node, taskPath, deleteData)
    , pool(taskPool)
    , examiner(deleteExaminer)
    , observer(
          makeObserver(waitPoint, [this](const ResultType &report) { handleDeleteNotification(report); }))
{ }

DeleteObserver::ResultType AttributeDeleteTask::runDelete()
{
    NodePtr node = AppConfig::utils::LockLiveNode(root);
    observer->report({DeletePoint::Begin, node != nullptr});
    if (!node)
        return observer->getResult();
    MarkForDeletion(*node);
    // Not before the mark: whoever hangs a child beneath the node later sees it, and knows that it came too
    // late.
    startDeletionOfChildren(node);
    node.reset();
    observer->report({DeletePoint::Done, true});
    return observer->getResult();
}

std::shared_ptr<DeleteObserver> AttributeDeleteTask::getObserver()
{
    return observer;
}

void AttributeDeleteTask::startDeletionOfChildren(const NodePtr &node) const
{
    // What a link shows beneath itself belongs to its target.
    if (qobject_cast<Shared::Hierarchy::HierarchyNodeLink *>(node.get()) || node->getNumberOfChildren() == 0)
        return;
    const QString prefix = path.isEmpty() ? path : path + HierarchyNode::GetHierarchyNodePathSeparator();
    AppConfig::utils::GlobalPoolJobs::Start([node, &taskPool = pool, prefix] {
        for (const NodePtr &child : node->getChildren(false)) {
            // The task keeps the child, which nobody else may hold by the time it runs.
            taskPool.startDeleteTask(child, prefix + child->getId(), QVariant::fromValue(child),
                                     DeletePoint::All);
        }
    });
}

void AttributeDeleteTask::handleDeleteNotification(const ResultType &result) const
{
    if (!path.isEmpty() && examiner && !examiner->isEmpty())
        Notification::utils::NotifyExaminers(examiner, path, result.first, result.second);
}

} // namespace Tessellum::AppConfig::Attributes
