#pragma once

#include <notification/DeleteTask.h>
#include <notification/ExaminerRegistration.h>
#include <notification/ThreadPool.h>

namespace Tessellum::AppConfig::Attributes {

/*! Takes an attribute off the tree and starts a task for each child. See DeleteTask for threads and reports.
 */
class AttributeDeleteTask : public Notification::DeleteTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::DeletePoint>>;

    /*!
     * \a pool takes the tasks of the children. \a data may hold a strong pointer to the node, which keeps a
     * child of a deleted parent until its own task has reported.
     */
    AttributeDeleteTask(Notification::ThreadPool &pool, const Examiners &examiner,
                        const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node, const QString &path,
                        const QVariant &data, const Notification::DeletePoint &waitPoint);

    Notification::DeleteObserver::ResultType runDelete() override;
    std::shared_ptr<Notification::DeleteObserver> getObserver() override;

private:
    void startDeletionOfChildren(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &node) const;
    void handleDeleteNotification(const Notification::DeleteObserver::ResultType &result) const;

    Notification::ThreadPool &pool;
    Examiners examiner;
    std::shared_ptr<Notification::DeleteObserver> observer;
};

} // namespace Tessellum::AppConfig::Attributes
