#pragma once

#include <notification/CreateTask.h>
#include <notification/DeleteTask.h>
#include <notification/UpdateTask.h>
#include <notification/utils/RunnableWrapper.h>
#include <notification/utils/WorkQueue.h>

#include <QElapsedTimer>
#include <QThreadPool>

#include <functional>
#include <memory>

namespace Tessellum::Notification {

/*!
 * A thread pool that makes tasks and resizes itself with the load.
 *
 * It starts with the number of cores, doubles under load up to MaximumThreadCount() and gives back half after
 * a second of low load, measured when a next task arrives. Work begins in the order in which it was started;
 * nothing serialises it.
 *
 * Any thread may call. Ownership: the pool owns its tasks; who starts one gets the observer alone. Failure: a
 * stopped pool, an empty factory or a factory without a task gives an empty observer.
 *
 * The class knows the factories of tasks and the right number of threads; what is queued and who works on it
 * is the matter of utils::WorkQueue.
 *
 * Lock: the mutex of the work queue also guards the idle timer. It is never held while a factory, a task or a
 * destructor of one runs.
 */
class TESSELLUM_EXPORT ThreadPool : public QThreadPool
{
public:
    using NodePointer = std::weak_ptr<Shared::Hierarchy::HierarchyNode>;
    using CreateFactory = std::function<std::unique_ptr<CreateTask>(
        const NodePointer &root, const QString &path, const QVariant &data, CreatePoint waitPoint)>;
    using UpdateFactory = std::function<std::unique_ptr<UpdateTask>(
        const NodePointer &node, const QVariant &value, UpdatePoint waitPoint)>;
    using DeleteFactory = std::function<std::unique_ptr<DeleteTask>(
        const NodePointer &root, const QString &path, const QVariant &data, DeletePoint waitPoint)>;

    /*! A pool for tasks. Fewer threads than MinimumThreadCount() are raised to it. */
    ThreadPool(const QString &poolName, CreateFactory create, UpdateFactory update, DeleteFactory remove,
               int requestedThreads, bool startStopped);
    /*! A pool without factories, which starts no tasks. */
    ThreadPool(const QString &poolName, int requestedThreads, bool startStopped);
    /*! Stops as stopAndWait() does, without a limit. */
    ~ThreadPool() override;

    /*! Starts a create task beneath \a root; the observer is empty where none could be started. */
    std::shared_ptr<CreateObserver> startCreateTask(const NodePointer &root, const QString &path,
                                                    const QVariant &data, const CreatePoint &waitPoint);
    /*! Starts a task that sets \a node to \a value; the observer is empty where none could be started. */
    std::shared_ptr<UpdateObserver> startUpdateTask(const NodePointer &node, const QVariant &value,
                                                    const UpdatePoint &waitPoint);
    /*! Starts a delete task beneath \a root; the observer is empty where none could be started. */
    std::shared_ptr<DeleteObserver> startDeleteTask(const NodePointer &root, const QString &path,
                                                    const QVariant &data, const DeletePoint &waitPoint);

    /*! Lets tasks in again. Not QThreadPool::start(). */
    void start();
    /*! Lets no further task in; those that are queued still run. */
    void stop();
    /*! True while tasks are let in. */
    bool isRunning() const { return work.isRunning(); }
    /*! Takes every queued task off the queue and ends it without a result; hides QThreadPool::clear(). */
    void clear();
    /*!
     * Waits until nothing is queued and nothing runs, whichever thread took it over; false if \a milliseconds
     * ran out (-1: no limit). Hides QThreadPool::waitForDone(). Not for threads of this pool; no lock may be
     * held.
     */
    bool waitForDone(int milliseconds = -1);
    /*!
     * The whole stop: stop(), clear(), wait for those that run, free all. True if nothing runs any more;
     * false if \a milliseconds ran out (-1: no limit), or without any wait if the calling thread is one of
     * this pool. Every few seconds of waiting leave a WARNING that names what still runs. No lock may be
     * held.
     */
    bool stopAndWait(int milliseconds = -1);

    /*! A new pool with these factories, this maximum of threads and this stop state. */
    std::unique_ptr<ThreadPool> clone(const QString &cloneName) const;

    QString getName() const { return name; }
    /*! The number of runnables that are created and not yet begun. */
    int getQueuedCount() const { return queued.count.load(); }

    /*! Frees the runnables that are over, with \a all also those that are not: for a pool at rest alone. */
    void cleanUp(bool all);

    /*! Sets the most threads for the work of this pool; one works even below 1. Hides
     * QThreadPool::setMaxThreadCount(). */
    void setMaxThreadCount(int threads);

    /*! Runs the task that reports to \a observer on the calling thread if it is still queued here. */
    bool takeAndRun(const utils::ObserverCore &observer);
    /*! True if a thread of this pool may lend its place to another one while it waits. */
    virtual bool lendsPlaces() const { return true; }
    /*! Lets one more thread work while the calling one, which is of this pool, waits. */
    void lendPlace();
    /*! Ends what lendPlace() began. */
    void takePlaceBack();

    /*! The larger of 2 and the number of cores. */
    static int MinimumThreadCount();
    /*! The most threads of a task pool: the larger of 8 and MinimumThreadCount(). */
    static int MaximumThreadCount();
    /*! The pool whose thread the calling thread is, or null; not null means that a stop must not wait here.
     */
    static ThreadPool *Current();

protected:
    /*! Called without a lock before a runnable is started. */
    virtual void adjustThreadCount();
    /*! Hands \a runnable to a thread. False, and \a runnable is freed, if the pool is stopped. */
    template <class Runnable>
    bool launch(std::unique_ptr<Runnable> runnable, std::shared_ptr<utils::ObserverCore> observer = {})
    {
        return work.add(std::make_unique<utils::RunnableWrapper<Runnable>>(std::move(runnable),
                                                                           std::move(observer), queued));
    }

    /*! Sets the maximum; the caller holds the mutex of the work queue. */
    void setMaxThreadCountLocked(int threads);
    /*! maxThreadCount() without a lock. */
    int currentMaxThreadCount() const { return work.mostWorkers(); }
    /*! Raises the maximum from \a current to \a wanted, or by as many threads as the system gives now. */
    void raiseMaxThreadCount(int current, int wanted);

    utils::RunnableCounter queued;
    utils::WorkQueue work;

private:
    template <class Task, class Factory, class... Arguments>
    std::shared_ptr<typename Task::ObserverType> startTask(const Factory &factory,
                                                           const Arguments &...arguments);
    int wantedThreadCountLocked(int current);
    void logRunning() const;
    static int ProbeThreads(int wanted);

    QElapsedTimer idleTimer;
    std::atomic<bool> isTimingIdleness = false; // whether idleTimer runs
    const QString name;
    const CreateFactory createFactory;
    const UpdateFactory updateFactory;
    const DeleteFactory deleteFactory;
};

} // namespace Tessellum::Notification
