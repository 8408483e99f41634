#include <appconfig/attributes/AttributeUpdateTask.h>
#include <appconfig/utils/LiveNode.h>
#include <appconfig/validation/AttributeValidationInterface.h>
#include <notification/utils/NotifyExaminers.h>
#include <shared/hierarchy/HierarchyStringPath.h>
#include <shared/logging/FrameworkLog.h>

#include <QDebug>

namespace Tessellum::AppConfig::Attributes {

using Notification::UpdateObserver;
using Notification::UpdatePoint;
using Notification::UpdateResult;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;
using Validation::ValidationResult;

namespace {

QString DebugText(const QVariant &value)
{
    QString text;
    QDebug(&text).nospace() << value;
    return text;
}

/*! Logs what a validation said of \a value; false if it refused it. */
bool AcceptResult(ValidationResult result, const QVariant &value)
{
    switch (result) {
    case ValidationResult::Valid:
        return true;
    case ValidationResult::Adjusted:
        FrameworkLog().log() << "AttributeUpdateTask::runUpdate() pre check: adjusted update value to: "
                             << DebugText(value);
        return true;
    case ValidationResult::Failed:
        FrameworkLog().warning() << "AttributeUpdateTask::runUpdate() pre check: failed validation";
        return false;
    case ValidationResult::Incompatible:
        FrameworkLog().warning()
            << "AttributeUpdateTask::runUpdate() pre check: incompatible update value received";
        return false;
    }
    FrameworkLog().warning() << "AttributeUpdateTask::runUpdate() unknown validation result received: "
                             << static_cast<int>(result);
    return false;
}

bool IsInTree(const std::shared_ptr<HierarchyNode> &node)
{
    return node && node->getParent();
}

} // namespace

AttributeUpdateTask::AttributeUpdateTask(const Examiners &updateExaminer,
                                         const std::weak_ptr<HierarchyNode> &attribute,
                                         const QVariant &newValue, const UpdatePoint &waitPoint)
    : UpdateTask(attribute, newValue)
    , examiner(updateExaminer)
    , wasInTree(IsInTree(attribute.lock()))
    , observer(std::make_shared<UpdateObserver>(
          [waitPoint](const ResultType &report) { return ReachesWaitPoint(waitPoint, report); },
          [this](const ResultType &report) { handleUpdateNotification(report); }))
{ }

UpdateObserver::ResultType AttributeUpdateTask::runUpdate()
{
    // The reference holds the attribute for the length of each call alone, so that its end is noticed.
    AttributeReference reference(std::weak_ptr<Attribute>(std::dynamic_pointer_cast<Attribute>(node.lock())),
                                 {});
    const auto unlessGone = [&reference](UpdateResult result) {
        return reference.isDeleteFlagSet() ? UpdateResult::NodeGone : result;
    };

    if (reference.isDeleteFlagSet()) {
        observer->report({UpdatePoint::Check, UpdateResult::NodeGone});
        return observer->getResult();
    }
    if (value.userType() == qMetaTypeId<DeferredUpdateValue>())
        value = value.value<DeferredUpdateValue>().make();
    if (!reference.getValue(previousValue, QMetaType::UnknownType))
        previousValue = QVariant();
    if (!preCheck(reference)) {
        observer->report({UpdatePoint::Check, UpdateResult::CheckFailed});
        return observer->getResult();
    }
    observer->report({UpdatePoint::Check, UpdateResult::Ok});
    observer->report({UpdatePoint::Apply, unlessGone(UpdateResult::Ok)});

    if (reference.setValue(value)) {
        // What is told from here on is what stands there: a writer may have changed the value.
        QVariant written;
        if (reference.getValue(written, QMetaType::UnknownType))
            value = written;
        observer->report({UpdatePoint::Done, unlessGone(UpdateResult::Ok)});
    } else {
        const UpdateResult failure = unlessGone(UpdateResult::ApplyFailed);
        observer->report({UpdatePoint::Failed, failure});
        observer->report({UpdatePoint::Done, failure});
    }
    return observer->getResult();
}

std::shared_ptr<UpdateObserver> AttributeUpdateTask::getObserver()
{
    return observer;
}

bool AttributeUpdateTask::preCheck(const AttributeReference &reference)
{
    const auto localization = reference.getLocalization();
    for (const auto &validation : reference.getValidations()) {
        if (AcceptResult(validation->validate(localization, value), value))
            continue;
        FrameworkLog().warning() << "AttributeUpdateTask::runUpdate() update failed for attribute: "
                                 << reference.getPath() << " pre check " << validation->getValidationId()
                                 << " failed";
        return false;
    }
    return true;
}

void AttributeUpdateTask::handleUpdateNotification(const ResultType &result) const
{
    if (!examiner || examiner->isEmpty())
        return;
    const auto attribute = node.lock();
    if (!attribute)
        return;
    const QString path = attribute->getNodePath()->getFullPath();
    // Off the tree, or on its way off, the node has lost the path that handlers know it by.
    if (attribute->isDeleteFlagSet() || (wasInTree && !IsInTree(attribute)))
        return;
    Notification::utils::NotifyExaminers(examiner, path, result.first, result.second, previousValue, value);
}

} // namespace Tessellum::AppConfig::Attributes
