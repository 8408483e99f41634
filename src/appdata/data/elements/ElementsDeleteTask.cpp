#include <appconfig/utils/LiveNode.h>
#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementsDeleteTask.h>
#include <appdata/data/elements/utils/ElementPaths.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <shared/hierarchy/HierarchyStringPath.h>

namespace Tessellum::AppData::Data::Elements {

using Entries::Entry;
using Notification::DeleteObserver;
using Notification::DeletePoint;
using Shared::Hierarchy::HierarchyNode;

ElementsDeleteTask::ElementsDeleteTask(const Examiners &deleteExaminer,
                                       const std::weak_ptr<HierarchyNode> &element, const QString &taskPath,
                                       const QVariant &deleteData, const DeletePoint &waitPoint)
    : DeleteTask(element, taskPath, deleteData)
    , examiner(deleteExaminer)
    , observer(
          makeObserver(waitPoint, [this](const ResultType &report) { handleDeleteNotification(report); }))
{ }

DeleteObserver::ResultType ElementsDeleteTask::runDelete()
{
    const auto element = std::dynamic_pointer_cast<Element>(AppConfig::utils::LockLiveNode(root));
    if (element && examiner && !examiner->isEmpty())
        paths = utils::ElementPaths(std::dynamic_pointer_cast<Entry>(element->getParent()), element->getId());
    observer->report({DeletePoint::Begin, element != nullptr});
    if (!element)
        return observer->getResult();
    remove(element);
    observer->report({DeletePoint::Done, true});
    return observer->getResult();
}

std::shared_ptr<DeleteObserver> ElementsDeleteTask::getObserver()
{
    return observer;
}

void ElementsDeleteTask::remove(const std::shared_ptr<Element> &element) const
{
    element->setDeleteFlag();
    const auto &entry = data.value<ElementData>().serialize.entry;
    Entries::utils::RemoveElementReference(Entries::utils::PairPath(entry.classification, entry.name),
                                           element);
}

void ElementsDeleteTask::handleDeleteNotification(const ResultType &result) const
{
    utils::NotifyPaths(examiner, paths, result.first, result.second);
}

} // namespace Tessellum::AppData::Data::Elements
