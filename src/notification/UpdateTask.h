#pragma once

#include <notification/utils/TaskBase.h>

namespace Tessellum::Notification {

/*! The base of all tasks that change a node. See utils::TaskBase for its life. */
class TESSELLUM_EXPORT UpdateTask : public utils::TaskBase<UpdateTask, UpdateObserver>
{
public:
    UpdateTask(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node, const QVariant &value);

    /*! Calls runUpdate(). An exception ends there with a CRITICAL line; nothing leaves this function. */
    void run() override;
    ~UpdateTask() override;
    /*! The work. Returns the last report that it made. */
    virtual ResultType runUpdate() = 0;
    /*! The observer of this task, never null; outlives the task for who holds it. */
    virtual std::shared_ptr<UpdateObserver> getObserver() = 0;

    /*! The node to change. */
    std::weak_ptr<Shared::Hierarchy::HierarchyNode> getNode() const { return node; }
    /*! "Update task for path=FULL PATH OF THE NODE value=VALUE AS TEXT" */
    QString getDescription() const override;
    /*! The parts of getDescription(). */
    utils::TaskDescription describe() const;

protected:
    std::weak_ptr<Shared::Hierarchy::HierarchyNode> node;
    QVariant value;
};

} // namespace Tessellum::Notification
