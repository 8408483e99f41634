#include "WorkQueue.h"

#include <notification/ThreadPool.h>
#include <notification/utils/CurrentPool.h>
#include <notification/utils/ShortLock.h>

#include <QThread>

#include <chrono>
#include <utility>

namespace Tessellum::Notification::utils {

namespace {

constexpr std::chrono::microseconds LookTime(20);
constexpr int MostPassedOver = 64;

} // namespace

WorkQueue::WorkQueue(ThreadPool &owner, bool startStopped)
    : pool(owner)
    , threads(owner)
    , stopped(startStopped)
{ }

void WorkQueue::setRunning(bool running)
{
    const ShortLocker locker(runnables.mutex);
    stopped.store(!running, std::memory_order_release);
}

bool WorkQueue::add(std::unique_ptr<TrackedRunnable> item)
{
    RunnableChain finished; // freed behind the lock
    bool wantsWorker = false;
    {
        const ShortLocker locker(runnables.mutex);
        finished = runnables.takeFinished();
        if (!isRunning())
            return false;
        runnables.add(std::move(item));
        wantsWorker = enlistWorkerLocked();
    }
    // Behind the lock, which is the first thing that the woken thread takes. A stop waits for the worker.
    if (wantsWorker)
        startWorker();
    return true;
}

bool WorkQueue::takeAndRun(const ObserverCore &observer)
{
    TrackedRunnable *item = nullptr;
    {
        const ShortLocker locker(runnables.mutex);
        item = runnables.take(observer);
    }
    if (!item)
        return false;
    {
        const CurrentPool current(&pool);
        item->run();
    }
    RunnableTracker::Leftovers leftovers; // freed behind the lock
    const ShortLocker locker(runnables.mutex);
    runnables.finish(item, leftovers);
    if (waiting > 0)
        nothingRuns.wakeAll();
    return true;
}

/*! True if the caller is to start one more worker, which is counted from here on. Not while another one looks
 * for work, as long as that one comes soon: it takes the next item and enlists a further worker if there are
 * more. QThreadPool may have failed to make its thread. */
bool WorkQueue::enlistWorkerLocked()
{
    if (!runnables.hasQueued() || workers >= allowedWorkersLocked())
        return false;
    if (lookingWorkers > 0 && ++passedOver < MostPassedOver)
        return false;
    passedOver = 0;
    ++workers;
    ++lookingWorkers;
    return true;
}

void WorkQueue::startWantedWorker()
{
    bool wantsWorker = false;
    {
        const ShortLocker locker(runnables.mutex);
        wantsWorker = enlistWorkerLocked();
    }
    if (wantsWorker)
        startWorker();
}

void WorkQueue::changeLentPlaces(int difference)
{
    const ShortLocker locker(runnables.mutex);
    lentPlaces += difference;
}

WorkQueue::Worker::Worker(WorkQueue &served)
    : queue(served)
{
    setAutoDelete(false);
}

void WorkQueue::Worker::run()
{
    const CurrentPool current(&queue.pool);
    TrackedRunnable *item = nullptr;
    while ((item = queue.exchangeItem(item)))
        item->run();
}

/*! Gives a finished item back and takes the next one; null ends the worker. With null, it is a new worker. */
TrackedRunnable *WorkQueue::exchangeItem(TrackedRunnable *finished)
{
    TrackedRunnable *next = nullptr;
    bool wantsWorker = false;
    {
        RunnableTracker::Leftovers leftovers; // freed behind the lock
        ShortLocker locker(runnables.mutex);
        if (finished)
            runnables.finish(finished, leftovers);
        else
            --lookingWorkers;
        next = takeItemLocked();
        if (!next && lookingWorkers == 0) {
            ++lookingWorkers;
            locker.unlock();
            lookForItems();
            locker.relock();
            --lookingWorkers;
            next = takeItemLocked();
        }
        if (next)
            wantsWorker = enlistWorkerLocked();
        else if (--workers; waiting > 0)
            nothingRuns.wakeAll();
    }
    if (wantsWorker)
        startWorker();
    return next;
}

TrackedRunnable *WorkQueue::takeItemLocked()
{
    const bool isTooMany = workers > allowedWorkersLocked();
    return isTooMany ? nullptr : runnables.takeNext();
}

/*! Returns when there is something to take, or after about the time that a thread takes to be woken. */
void WorkQueue::lookForItems() const
{
    const QDeadlineTimer end(LookTime, Qt::PreciseTimer);
    while (!runnables.hasQueued() && waiting == 0 && !end.hasExpired())
        QThread::yieldCurrentThread();
}

void WorkQueue::discardQueued()
{
    RunnableChain discarded; // ended and freed behind the lock
    const ShortLocker locker(runnables.mutex);
    discarded = runnables.takeQueued();
}

void WorkQueue::cleanUp(bool withQueued)
{
    RunnableChain finished; // both freed behind the lock
    RunnableChain discarded;
    const ShortLocker locker(runnables.mutex);
    finished = runnables.takeFinished();
    if (withQueued)
        discarded = runnables.takeQueued();
}

bool WorkQueue::waitUntilEmpty(const QDeadlineTimer &deadline)
{
    const ShortLocker locker(runnables.mutex);
    // What a waiting thread of another pool took over runs without a worker.
    const auto isOver = [this] { return workers == 0 && !runnables.hasRunning(); };
    ++waiting;
    while (!isOver() && nothingRuns.wait(&runnables.mutex, deadline)) { }
    --waiting;
    return isOver();
}

QList<TaskDescription> WorkQueue::runningDescriptions(int limit) const
{
    const ShortLocker locker(runnables.mutex);
    return runnables.runningDescriptions(limit);
}

} // namespace Tessellum::Notification::utils
