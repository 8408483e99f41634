#pragma once

#include <notification/utils/TaskBase.h>

namespace Tessellum::Notification {

/*! The base of all tasks that delete something beneath a node. See utils::TaskBase for its life. */
class TESSELLUM_EXPORT DeleteTask : public utils::PlaceTask<DeleteTask, DeleteObserver>
{
public:
    DeleteTask(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &root, const QString &path,
               const QVariant &data = QVariant());

    /*! Calls runDelete(). An exception ends there with a CRITICAL line; nothing leaves this function. */
    void run() override;
    ~DeleteTask() override;
    /*! The work. Returns the last report that it made. */
    virtual ResultType runDelete() = 0;
    /*! The observer of this task, never null; outlives the task for who holds it. */
    virtual std::shared_ptr<DeleteObserver> getObserver() = 0;

    /*! "Delete task for path=PATH" */
    QString getDescription() const override;
    /*! The parts of getDescription(). */
    utils::TaskDescription describe() const;
};

} // namespace Tessellum::Notification
