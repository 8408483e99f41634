#pragma once

#include <notification/utils/RunnableTracker.h>

#include <QDeadlineTimer>
#include <QRunnable>
#include <QThreadPool>
#include <QWaitCondition>

namespace Tessellum::Notification {
class ThreadPool;
}

namespace Tessellum::Notification::utils {

/*!
 * The queue of a pool and the workers that empty it. The queue gives QThreadPool one worker for each thread
 * that it wants; a worker goes on until nothing is queued. So a start among many costs no more than one among
 * few, as it does in QThreadPool.
 *
 * Waking a thread costs more than most tasks. So one worker at a time is woken, which passes that on when it
 * finds more than one item, and one that finds nothing looks on for an instant before it leaves.
 *
 * Any thread may call. Ownership: the queue owns its items; it must not live longer than its pool's threads,
 * which the pool's stop waits for.
 *
 * Lock: mutex() guards the record of items and the workers' numbers, and makes the test of the stop flag and
 * the entry of an item one step. No function here may be called with it held, except those whose name ends
 * in Locked. It is never held while an item or the destructor of one runs.
 */
class TESSELLUM_EXPORT WorkQueue
{
public:
    /*! A queue whose workers are threads of \a pool. */
    WorkQueue(ThreadPool &owner, bool startStopped);
    Q_DISABLE_COPY(WorkQueue)

    QMutex &mutex() const { return runnables.mutex; }

    /*! True while items are let in. */
    bool isRunning() const { return !stopped.load(std::memory_order_acquire); }
    /*! Lets items in or keeps them out; those that are queued still run. */
    void setRunning(bool running);
    /*! Queues \a item; false, and it is freed, if the queue is stopped. */
    bool add(std::unique_ptr<TrackedRunnable> item);
    /*! Runs the item that reports to \a observer on the calling thread if it is still queued. */
    bool takeAndRun(const ObserverCore &observer);

    /*! The most workers at once, as last set; without a lock. */
    int mostWorkers() const { return maximum.load(std::memory_order_relaxed); }
    /*! Sets the most workers; the caller calls startWantedWorker() behind the lock. */
    void setMostWorkersLocked(int workerCount) { maximum.store(workerCount, std::memory_order_relaxed); }
    /*! Starts one more worker if there is work for it. */
    void startWantedWorker();
    /*! Lets one more worker run, or ends that: \a difference is 1 or -1. */
    void changeLentPlaces(int difference);

    /*! Ends every queued item without a result and frees it. */
    void discardQueued();
    /*! Frees the items that are over, with \a withQueued also those that have not begun. */
    void cleanUp(bool withQueued);
    /*! Waits until nothing is queued and nothing runs; false if \a deadline passed before. */
    bool waitUntilEmpty(const QDeadlineTimer &deadline);
    /*! The descriptions of the items that run now, \a limit at most. */
    QList<TaskDescription> runningDescriptions(int limit) const;

private:
    class Worker : public QRunnable
    {
    public:
        explicit Worker(WorkQueue &served);
        void run() override;

    private:
        WorkQueue &queue;
    };

    void startWorker() { threads.start(&worker, 0); }
    TrackedRunnable *exchangeItem(TrackedRunnable *finished);
    TrackedRunnable *takeItemLocked();
    void lookForItems() const;
    int allowedWorkersLocked() const { return qMax(1, mostWorkers()) + lentPlaces; }
    bool enlistWorkerLocked();

    ThreadPool &pool;
    QThreadPool &threads; // the same as the pool, whose start() means something else
    mutable RunnableTracker runnables;
    std::atomic<bool> stopped;
    std::atomic<int> maximum = 0; // QThreadPool's own would take a lock
    Worker worker{*this}; // one object for all workers
    int workers = 0; // that run or are about to
    int lookingWorkers = 0; // those among them that have no item yet
    int passedOver = 0; // times that nobody was started since one looks for work
    int lentPlaces = 0;
    std::atomic<int> waiting = 0; // threads that wait for nothingRuns
    QWaitCondition nothingRuns;
};

} // namespace Tessellum::Notification::utils
