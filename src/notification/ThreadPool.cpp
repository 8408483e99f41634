#include "ThreadPool.h"

#include <notification/utils/CurrentPool.h>
#include <notification/utils/ShortLock.h>
#include <shared/logging/FrameworkLog.h>

#include <QSemaphore>
#include <QThread>

#include <chrono>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace Tessellum::Notification {

namespace {

constexpr int IdleMilliseconds = 1001;
constexpr std::chrono::microseconds LookTime(20);
constexpr int MostPassedOver = 64;
constexpr int StopReportMilliseconds = 5000;
constexpr int StopReportLines = 10;

/*! Releases and joins threads that wait at a semaphore. */
class ThrowAwayThreads
{
public:
    ThrowAwayThreads() = default;
    Q_DISABLE_COPY(ThrowAwayThreads)

    ~ThrowAwayThreads()
    {
        end.release(int(threads.size()));
        for (auto &thread : threads)
            thread.join();
    }

    /*! Starts up to \a wanted threads; returns how many the system gave. */
    int start(int wanted)
    {
        threads.reserve(size_t(wanted));
        try {
            while (int(threads.size()) < wanted)
                threads.emplace_back([this] { end.acquire(); });
        } catch (const std::system_error &) {
            // No more to be had; what there is counts.
        }
        return int(threads.size());
    }

private:
    QSemaphore end;
    std::vector<std::thread> threads;
};

} // namespace

ThreadPool::ThreadPool(const QString &poolName, CreateFactory create, UpdateFactory update,
                       DeleteFactory remove, int requestedThreads, bool startStopped)
    : name(poolName)
    , createFactory(std::move(create))
    , updateFactory(std::move(update))
    , deleteFactory(std::move(remove))
    , stopped(startStopped)
{
    const int threads = qMax(requestedThreads, MinimumThreadCount());
    if (threads != requestedThreads) {
        Shared::Logging::FrameworkLog().debug()
            << "ThreadPool::ThreadPool(" << name << ") changing requested minimum thread size from "
            << requestedThreads << " to " << threads;
    }
    setMaxThreadCount(threads);
}

ThreadPool::ThreadPool(const QString &poolName, int requestedThreads, bool startStopped)
    : ThreadPool(poolName, nullptr, nullptr, nullptr, requestedThreads, startStopped)
{ }

ThreadPool::~ThreadPool()
{
    ThreadPool::stopAndWait();
}

std::shared_ptr<CreateObserver> ThreadPool::startCreateTask(const NodePointer &root, const QString &path,
                                                            const QVariant &data,
                                                            const CreatePoint &waitPoint)
{
    return startTask<CreateTask>(createFactory, root, path, data, waitPoint);
}

std::shared_ptr<UpdateObserver> ThreadPool::startUpdateTask(const NodePointer &node, const QVariant &value,
                                                            const UpdatePoint &waitPoint)
{
    return startTask<UpdateTask>(updateFactory, node, value, waitPoint);
}

std::shared_ptr<DeleteObserver> ThreadPool::startDeleteTask(const NodePointer &root, const QString &path,
                                                            const QVariant &data,
                                                            const DeletePoint &waitPoint)
{
    return startTask<DeleteTask>(deleteFactory, root, path, data, waitPoint);
}

template <class Task, class Factory, class... Arguments>
std::shared_ptr<typename Task::ObserverType> ThreadPool::startTask(const Factory &factory,
                                                                   const Arguments &...arguments)
{
    if (!isRunning() || !factory) {
        cleanUp(false);
        return nullptr;
    }
    std::unique_ptr<Task> task = factory(arguments...);
    if (!task)
        return nullptr;
    adjustThreadCount();
    auto observer = task->getObserver();
    if (!launch(std::move(task), observer))
        return nullptr;
    return observer;
}

bool ThreadPool::launchWrapper(std::unique_ptr<utils::TrackedRunnable> wrapper)
{
    utils::RunnableChain finished; // freed behind the lock
    bool wantsWorker = false;
    {
        const utils::ShortLocker locker(runnables.mutex);
        finished = runnables.takeFinished();
        if (!isRunning())
            return false;
        runnables.add(std::move(wrapper));
        wantsWorker = enlistWorkerLocked();
    }
    // Behind the lock, which is the first thing that the woken thread takes. A stop waits for the worker.
    if (wantsWorker)
        QThreadPool::start(&worker, 0);
    return true;
}

int ThreadPool::allowedWorkersLocked() const
{
    return qMax(1, currentMaxThreadCount()) + lentPlaces;
}

/*! True if the caller is to start one more worker, which is counted from here on. Not while another one looks
 * for work, as long as that one comes soon: it takes the next item and enlists a further worker if there are
 * more. QThreadPool may have failed to make its thread. */
bool ThreadPool::enlistWorkerLocked()
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

void ThreadPool::startWantedWorker()
{
    bool wantsWorker = false;
    {
        const utils::ShortLocker locker(runnables.mutex);
        wantsWorker = enlistWorkerLocked();
    }
    if (wantsWorker)
        QThreadPool::start(&worker, 0);
}

ThreadPool::Worker::Worker(ThreadPool &owner)
    : pool(owner)
{
    setAutoDelete(false);
}

void ThreadPool::Worker::run()
{
    const utils::CurrentPool current(&pool);
    utils::TrackedRunnable *item = nullptr;
    while ((item = pool.exchangeItem(item)))
        item->run();
}

/*! Gives a finished item back and takes the next one; null ends the worker. With null, it is a new worker. */
utils::TrackedRunnable *ThreadPool::exchangeItem(utils::TrackedRunnable *finished)
{
    utils::TrackedRunnable *next = nullptr;
    bool wantsWorker = false;
    {
        utils::RunnableTracker::Leftovers leftovers; // freed behind the lock
        utils::ShortLocker locker(runnables.mutex);
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
        QThreadPool::start(&worker, 0);
    return next;
}

utils::TrackedRunnable *ThreadPool::takeItemLocked()
{
    const bool isTooMany = workers > allowedWorkersLocked();
    return isTooMany ? nullptr : runnables.takeNext();
}

/*! Returns when there is something to take, or after about the time that a thread takes to be woken. */
void ThreadPool::lookForItems() const
{
    const QDeadlineTimer end(LookTime, Qt::PreciseTimer);
    while (!runnables.hasQueued() && waiting == 0 && !end.hasExpired())
        QThread::yieldCurrentThread();
}

void ThreadPool::lendPlace()
{
    {
        const utils::ShortLocker locker(runnables.mutex);
        ++lentPlaces;
    }
    releaseThread();
    startWantedWorker();
}

void ThreadPool::takePlaceBack()
{
    reserveThread();
    const utils::ShortLocker locker(runnables.mutex);
    --lentPlaces;
}

void ThreadPool::setMaxThreadCount(int threads)
{
    {
        const utils::ShortLocker locker(runnables.mutex);
        setMaxThreadCountLocked(threads);
    }
    startWantedWorker();
}

void ThreadPool::setMaxThreadCountLocked(int threads)
{
    QThreadPool::setMaxThreadCount(threads);
    maximum.store(threads, std::memory_order_relaxed);
}

void ThreadPool::adjustThreadCount()
{
    // Under load there is nothing to do, and no lock to compete for.
    if (currentMaxThreadCount() >= MaximumThreadCount() && getQueuedCount() >= MinimumThreadCount()
        && !isTimingIdleness.load(std::memory_order_relaxed))
        return;
    int current = 0;
    int wanted = 0;
    {
        const utils::ShortLocker locker(runnables.mutex);
        current = currentMaxThreadCount();
        wanted = wantedThreadCountLocked(current);
        isTimingIdleness.store(idleTimer.isValid(), std::memory_order_relaxed);
        if (wanted < current)
            setMaxThreadCountLocked(wanted);
    }
    if (wanted > current)
        raiseMaxThreadCount(current, wanted);
}

int ThreadPool::wantedThreadCountLocked(int current)
{
    const int minimum = MinimumThreadCount();
    const int waitingRunnables = getQueuedCount();
    if (waitingRunnables >= current - 1 && MaximumThreadCount() > current)
        return qMin(2 * current, MaximumThreadCount());
    if (waitingRunnables >= minimum) {
        idleTimer.invalidate();
        return current;
    }
    if (!idleTimer.isValid()) {
        idleTimer.start();
        return current;
    }
    if (idleTimer.elapsed() < IdleMilliseconds)
        return current;
    idleTimer.invalidate();
    return qMax(minimum, current / 2);
}

void ThreadPool::raiseMaxThreadCount(int current, int wanted)
{
    const int further = ProbeThreads(wanted - current);
    if (further <= 0)
        return;
    {
        const utils::ShortLocker locker(runnables.mutex);
        if (currentMaxThreadCount() != current) // somebody else was faster
            return;
        setMaxThreadCountLocked(current + further);
    }
    startWantedWorker();
}

int ThreadPool::ProbeThreads(int wanted)
{
    // QThreadPool loses a runnable whose thread cannot be created, and then never comes to an end.
    const int given = ThrowAwayThreads().start(wanted);
    return given == wanted ? given : given / 2; // near the limit the rest of the process wants some too
}

void ThreadPool::start()
{
    stopped.store(false, std::memory_order_release);
}

void ThreadPool::stop()
{
    {
        const utils::ShortLocker locker(runnables.mutex);
        stopped.store(true, std::memory_order_release);
    }
    cleanUp(false);
}

void ThreadPool::clear()
{
    utils::RunnableChain discarded; // ended and freed behind the lock
    const utils::ShortLocker locker(runnables.mutex);
    discarded = runnables.takeQueued();
}

bool ThreadPool::stopAndWait(int milliseconds)
{
    stop();
    clear();
    if (utils::CurrentPool::Contains(this))
        return false;

    const QDeadlineTimer deadline(milliseconds);
    while (!waitForWorkers(qMin(deadline, QDeadlineTimer(StopReportMilliseconds)))) {
        if (deadline.hasExpired())
            return false;
        logRunning();
    }
    if (!waitForDone(int(deadline.remainingTime()))) // -1 without a limit
        return false;
    cleanUp(true);
    return true;
}

bool ThreadPool::waitForDone(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    // A worker that is over may still free what its last task held.
    return waitForWorkers(deadline) && QThreadPool::waitForDone(int(deadline.remainingTime()));
}

bool ThreadPool::waitForWorkers(const QDeadlineTimer &deadline)
{
    const utils::ShortLocker locker(runnables.mutex);
    // What a waiting thread of another pool took over runs without a worker.
    const auto isOver = [this] { return workers == 0 && !runnables.hasRunning(); };
    ++waiting;
    while (!isOver() && nothingRuns.wait(&runnables.mutex, deadline)) { }
    --waiting;
    return isOver();
}

void ThreadPool::logRunning() const
{
    QList<utils::TaskDescription> descriptions;
    {
        const utils::ShortLocker locker(runnables.mutex);
        descriptions = runnables.runningDescriptions(StopReportLines);
    }
    for (const auto &description : qAsConst(descriptions)) {
        Shared::Logging::FrameworkLog().warning()
            << "ThreadPool::stopAndWait(" << name << ") still waiting for " << description.text();
    }
}

std::unique_ptr<ThreadPool> ThreadPool::clone(const QString &cloneName) const
{
    return std::make_unique<ThreadPool>(cloneName, createFactory, updateFactory, deleteFactory,
                                        maxThreadCount(), !isRunning());
}

void ThreadPool::cleanUp(bool all)
{
    utils::RunnableChain finished;
    utils::RunnableChain discarded;
    const utils::ShortLocker locker(runnables.mutex);
    finished = runnables.takeFinished();
    if (all)
        discarded = runnables.takeQueued();
}

bool ThreadPool::takeAndRun(const utils::ObserverCore &observer)
{
    utils::TrackedRunnable *item = nullptr;
    {
        const utils::ShortLocker locker(runnables.mutex);
        item = runnables.take(observer);
    }
    if (!item)
        return false;
    {
        const utils::CurrentPool current(this);
        item->run();
    }
    utils::RunnableTracker::Leftovers leftovers; // freed behind the lock
    const utils::ShortLocker locker(runnables.mutex);
    runnables.finish(item, leftovers);
    if (waiting > 0)
        nothingRuns.wakeAll();
    return true;
}

int ThreadPool::MinimumThreadCount()
{
    static const int count = qMax(2, QThread::idealThreadCount());
    return count;
}

int ThreadPool::MaximumThreadCount()
{
    return qMax(8, MinimumThreadCount());
}

ThreadPool *ThreadPool::Current()
{
    return utils::CurrentPool::Outermost();
}

} // namespace Tessellum::Notification
