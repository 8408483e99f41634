#pragma once

#include <notification/utils/TaskDescription.h>
#include <notification/utils/TaskInfoInterface.h>
#include <shared/synchronization/Shareable.h>

#include <QRunnable>

namespace Shared::Hierarchy {
class HierarchyNode;
}

namespace Tessellum::Notification::utils {

/*!
 * What the bases of all kinds of tasks share.
 *
 * A ThreadPool makes a task through its factory, runs it once on one of its threads and deletes it. A
 * subclass makes its observer in its constructor and reports every point to it. No lock of its own.
 */
template <class Task, class Observed>
class TaskBase : public QRunnable, public TaskInfoInterface, public Shared::Synchronization::Shareable<Task>
{
public:
    using ObserverType = Observed;
    using ResultType = typename Observed::ResultType;
    using Point = typename ResultType::first_type;
};

/*! A task that works at a place beneath a node. */
template <class Task, class Observed>
class PlaceTask : public TaskBase<Task, Observed>
{
public:
    PlaceTask(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &rootNode, const QString &taskPath,
              const QVariant &taskData)
        : root(rootNode)
        , path(taskPath)
        , data(taskData)
    { }

    /*! The node beneath which the work is done. */
    std::weak_ptr<Shared::Hierarchy::HierarchyNode> getRoot() const { return root; }

protected:
    std::weak_ptr<Shared::Hierarchy::HierarchyNode> root;
    QString path; // what the task works on, relative to root
    QVariant data;
};

} // namespace Tessellum::Notification::utils
