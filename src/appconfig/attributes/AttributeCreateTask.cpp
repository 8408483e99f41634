#include <appconfig/attributes/AttributeCreateTask.h>
#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/utils/LiveNode.h>
#include <notification/utils/NotifyExaminers.h>
#include <shared/hierarchy/HierarchyStringPath.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppConfig::Attributes {

using Notification::CreateObserver;
using Notification::CreatePoint;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;

namespace {

bool IsEnsure(const QVariant &data)
{
    return data.canConvert<AttributeEnsureData>();
}

/*! The payload of a single create; the default where it has no such form. */
AttributeCreateData SingleData(const QVariant &data)
{
    return IsEnsure(data) ? data.value<AttributeEnsureData>() : data.value<AttributeCreateData>();
}

} // namespace

AttributeCreateTask::AttributeCreateTask(const Examiners &createExaminer,
                                         const std::weak_ptr<HierarchyNode> &parent, const QString &taskPath,
                                         const QVariant &createData, const CreatePoint &waitPoint)
    : CreateTask(parent, taskPath, createData)
    , examiner(createExaminer)
    , isSingle(data.canConvert<AttributeCreateData>() || IsEnsure(data))
    , observer(
          makeObserver(waitPoint, [this](const ResultType &report) { handleCreateNotification(report); }))
{ }

CreateObserver::ResultType AttributeCreateTask::runCreate()
{
    if (!isSingle && !data.canConvert<AttributesCreateData>()) {
        FrameworkLog().warning() << "AttributeCreateTask::runCreate() failed to convert the data into "
                                    "AttributeCreateData or AttributesCreateData, no attribute(s) created";
        observer->report({CreatePoint::Begin, false});
        return observer->getResult();
    }
    const auto parent = AppConfig::utils::LockLiveNode(root);
    observer->report({CreatePoint::Begin, parent != nullptr});
    if (!parent)
        return observer->getResult();
    const bool created = isSingle ? CreateAttributeInHierarchy(parent, SingleData(data), IsEnsure(data))
                                  : createAttributesInHierarchy(parent);
    observer->report({CreatePoint::Done, created});
    return observer->getResult();
}

std::shared_ptr<CreateObserver> AttributeCreateTask::getObserver()
{
    return observer;
}

bool AttributeCreateTask::createAttributesInHierarchy(const std::shared_ptr<HierarchyNode> &parent) const
{
    const auto list = data.value<AttributesCreateData>();
    if (list.isEmpty()) {
        FrameworkLog().warning() << "AttributesCreateTask::createAttributesInHierarchy() supplied creation "
                                    "data is empty, no data entries created";
        return false;
    }
    return CreateAttributesInHierarchy(parent, list) > 0;
}

void AttributeCreateTask::handleCreateNotification(const ResultType &result) const
{
    const auto parent = AppConfig::utils::LockLiveNode(root);
    if (!parent || !examiner)
        return;
    const auto list = isSingle ? AttributesCreateData{SingleData(data)} : data.value<AttributesCreateData>();
    if (list.isEmpty()) {
        FrameworkLog().warning() << "AttributeCreateTask::handleCreateNotification() supplied creation data "
                                    "is empty, no notifications send";
        return;
    }
    if (examiner->isEmpty())
        return;
    // A parent without a path adds no element of its own.
    const QString parentPath = parent->getNodePath()->getFullPath();
    const QString prefix
        = parentPath.isEmpty() ? QString() : parentPath + HierarchyNode::GetHierarchyNodePathSeparator();
    for (const AttributeCreateData &element : list)
        Notification::utils::NotifyExaminers(examiner, prefix + element.name, result.first, result.second);
}

} // namespace Tessellum::AppConfig::Attributes
