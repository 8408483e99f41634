#pragma once

#include <notification/utils/TaskBase.h>

namespace Tessellum::Notification {

/*! The base of all tasks that create something beneath a node. See utils::TaskBase for its life. */
class TESSELLUM_EXPORT CreateTask : public utils::PlaceTask<CreateTask, CreateObserver>
{
public:
    CreateTask(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &root, const QString &path,
               const QVariant &data = QVariant());

    /*! Calls runCreate(). An exception ends there with a CRITICAL line; nothing leaves this function. */
    void run() override;
    ~CreateTask() override;
    /*! The work. Returns the last report that it made. */
    virtual ResultType runCreate() = 0;
    /*! The observer of this task, never null; outlives the task for who holds it. */
    virtual std::shared_ptr<CreateObserver> getObserver() = 0;

    /*! "Create task for path=PATH root=FULL PATH OF ROOT" */
    QString getDescription() const override;
    /*! The parts of getDescription(). */
    utils::TaskDescription describe() const;
};

} // namespace Tessellum::Notification
