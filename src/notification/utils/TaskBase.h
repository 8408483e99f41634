#pragma once

#include <notification/Observer.h>
#include <notification/utils/TaskDescription.h>
#include <notification/utils/TaskInfoInterface.h>
#include <shared/synchronization/Shareable.h>

#include <QRunnable>

#include <exception>
#include <memory>
#include <utility>

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

protected:
    /*! The observer of a task whose caller waits for \a waitPoint; \a onReport hears of every report. */
    template <class Handler>
    static std::shared_ptr<Observed> makeObserver(const Point &waitPoint, Handler &&onReport)
    {
        return std::make_shared<Observed>(
            [waitPoint](const ResultType &report) { return ReachesWaitPoint(waitPoint, report); },
            std::forward<Handler>(onReport));
    }

    /*! Reports what came of \a work as the outcome of the task. Who waits and who listens hears of the end
     * before an exception goes on to run(), which logs it. */
    template <class Work>
    static ResultType reportOutcome(Observed &observer, Work &&work)
    {
        bool done = false;
        std::exception_ptr failure;
        try {
            done = work();
        } catch (...) {
            failure = std::current_exception();
        }
        observer.report({Point::Done, done});
        if (failure)
            std::rethrow_exception(failure);
        return observer.getResult();
    }
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
