#pragma once

#include <notification/Observer.h>
#include <notification/utils/TaskDescription.h>
#include <notification/utils/TaskInfoInterface.h>
#include <shared/synchronization/Shareable.h>

#include <QRunnable>

namespace Tessellum::Notification {

/*!
 * The base of all tasks that change a node.
 *
 * A ThreadPool makes it through its factory, runs it once on one of its threads and deletes it. A subclass
 * makes its observer in its constructor and reports every point to it. No lock of its own.
 */
class TESSELLUM_EXPORT UpdateTask : public QRunnable,
                                    public utils::TaskInfoInterface,
                                    public Shared::Synchronization::Shareable<UpdateTask>
{
public:
    using Point = UpdatePoint;
    using ObserverType = UpdateObserver;
    using ResultType = UpdateObserver::ResultType;

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
