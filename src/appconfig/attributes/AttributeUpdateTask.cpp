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

bool IsGone(const std::weak_ptr<Attribute> &target)
{
    const auto attribute = target.lock();
    return !attribute || attribute->isDeleteFlagSet();
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
    , observer(
          makeObserver(waitPoint, [this](const ResultType &report) { handleUpdateNotification(report); }))
{ }

UpdateObserver::ResultType AttributeUpdateTask::runUpdate()
{
    // The attribute is held for the length of each step alone, so that its end is noticed.
    const AttributePointer target = ToAttribute(node.lock());
    const auto unlessGone
        = [&target](UpdateResult result) { return IsGone(target) ? UpdateResult::NodeGone : result; };

    if (IsGone(target)) {
        observer->report({UpdatePoint::Check, UpdateResult::NodeGone});
        return observer->getResult();
    }
    if (value.userType() == qMetaTypeId<DeferredUpdateValue>())
        value = value.value<DeferredUpdateValue>().make();
    if (!preCheck(target)) {
        observer->report({UpdatePoint::Check, UpdateResult::CheckFailed});
        return observer->getResult();
    }
    observer->report({UpdatePoint::Check, UpdateResult::Ok});
    observer->report({UpdatePoint::Apply, unlessGone(UpdateResult::Ok)});

    if (apply(target)) {
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

/*! Keeps the value that stands there and asks the validations about the new one. */
bool AttributeUpdateTask::preCheck(const AttributePointer &target)
{
    QList<std::shared_ptr<Validation::AttributeValidationInterface>> validations;
    if (const auto attribute = target.lock()) {
        if (!attribute->getValue(previousValue, QMetaType::UnknownType))
            previousValue = QVariant();
        validations = attribute->getValidations();
    }
    for (const auto &validation : qAsConst(validations)) {
        if (AcceptResult(validation->validate(nullptr, value), value))
            continue;
        const auto attribute = target.lock();
        FrameworkLog().warning() << "AttributeUpdateTask::runUpdate() update failed for attribute: "
                                 << (attribute ? attribute->getPath() : QString()) << " pre check "
                                 << validation->getValidationId() << " failed";
        return false;
    }
    return true;
}

/*! False if the value could not be set. */
bool AttributeUpdateTask::apply(const AttributePointer &target)
{
    const auto attribute = target.lock();
    if (!attribute || !attribute->setValue(value))
        return false;
    // What is told from here on is what stands there: a writer may have changed the value.
    QVariant written;
    if (attribute->getValue(written, QMetaType::UnknownType))
        value = written;
    return true;
}

void AttributeUpdateTask::handleUpdateNotification(const ResultType &result) const
{
    if (!examiner || !examiner->hears(result.first))
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
