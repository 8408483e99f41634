#pragma once

#include <notification/Observer.h>
#include <notification/utils/TaskDescription.h>
#include <notification/utils/TaskInfoInterface.h>
#include <shared/synchronization/Shareable.h>

#include <QRunnable>

namespace Tessellum::Notification {

/*!
 * The base of all tasks that delete something beneath a node.
 *
 * A ThreadPool makes it through its factory, runs it once on one of its threads and deletes it. A subclass
 * makes its observer in its constructor and reports every point to it. No lock of its own.
 */
class TESSELLUM_EXPORT DeleteTask : public QRunnable,
                                    public utils::TaskInfoInterface,
                                    public Shared::Synchronization::Shareable<DeleteTask>
{
public:
    using Point = DeletePoint;
    using ObserverType = DeleteObserver;
    using ResultType = DeleteObserver::ResultType;

    DeleteTask(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &root, const QString &path,
               const QVariant &data = QVariant());

    /*! Calls runDelete(). An exception ends there with a CRITICAL line; nothing leaves this function. */
    void run() override;
    ~DeleteTask() override;
    /*! The work. Returns the last report that it made. */
    virtual ResultType runDelete() = 0;
    /*! The observer of this task, never null; outlives the task for who holds it. */
    virtual std::shared_ptr<DeleteObserver> getObserver() = 0;

    /*! The node beneath which the work is done. */
    std::weak_ptr<Shared::Hierarchy::HierarchyNode> getRoot() const { return root; }
    /*! "Delete task for path=PATH" */
    QString getDescription() const override;
    /*! The parts of getDescription(). */
    utils::TaskDescription describe() const;

protected:
    std::weak_ptr<Shared::Hierarchy::HierarchyNode> root;
    QString path; // what the task works on, relative to root
    QVariant data;
};

} // namespace Tessellum::Notification
