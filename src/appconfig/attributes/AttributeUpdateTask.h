#pragma once

#include <appconfig/attributes/Attribute.h>
#include <notification/ExaminerRegistration.h>
#include <notification/UpdateTask.h>

namespace Tessellum::AppConfig::Attributes {

/*!
 * The value of an update that is made when the update begins, on the thread that runs it: what the update
 * is to tell can be known by then alone.
 */
struct DeferredUpdateValue
{
    std::function<QVariant()> make; ///< never empty
};

/*!
 * Validates and applies a new value, which may be a DeferredUpdateValue. See UpdateTask for threads and
 * reports.
 */
class AttributeUpdateTask : public Notification::UpdateTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::UpdatePoint>>;

    AttributeUpdateTask(const Examiners &updateExaminer,
                        const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &attribute,
                        const QVariant &newValue, const Notification::UpdatePoint &waitPoint);

    Notification::UpdateObserver::ResultType runUpdate() override;
    std::shared_ptr<Notification::UpdateObserver> getObserver() override;

private:
    using AttributePointer = std::weak_ptr<Attribute>;

    bool preCheck(const AttributePointer &target);
    bool apply(const AttributePointer &target);
    void handleUpdateNotification(const Notification::UpdateObserver::ResultType &result) const;

    Examiners examiner;
    const bool wasInTree;
    QVariant previousValue;
    std::shared_ptr<Notification::UpdateObserver> observer;
};

} // namespace Tessellum::AppConfig::Attributes

Q_DECLARE_METATYPE(Tessellum::AppConfig::Attributes::DeferredUpdateValue)
