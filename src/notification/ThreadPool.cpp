#include "ThreadPool.h"

#include <notification/utils/CurrentPool.h>
#include <notification/utils/ShortLock.h>
#include <shared/logging/FrameworkLog.h>

#include <QDeadlineTimer>
#include <QSemaphore>
#include <QThread>

#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace Tessellum::Notification {

namespace {

constexpr int IdleMilliseconds = 1001;
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
    : work(*this, startStopped)
    , name(poolName)
    , createFactory(std::move(create))
    , updateFactory(std::move(update))
    , deleteFactory(std::move(remove))
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

void ThreadPool::lendPlace()
{
    work.changeLentPlaces(1);
    releaseThread();
    work.startWantedWorker();
}

void ThreadPool::takePlaceBack()
{
    reserveThread();
    work.changeLentPlaces(-1);
}

void ThreadPool::setMaxThreadCount(int threads)
{
    {
        const utils::ShortLocker locker(work.mutex());
        setMaxThreadCountLocked(threads);
    }
    work.startWantedWorker();
}

void ThreadPool::setMaxThreadCountLocked(int threads)
{
    QThreadPool::setMaxThreadCount(threads);
    work.setMostWorkersLocked(threads);
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
        const utils::ShortLocker locker(work.mutex());
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
        const utils::ShortLocker locker(work.mutex());
        if (currentMaxThreadCount() != current) // somebody else was faster
            return;
        setMaxThreadCountLocked(current + further);
    }
    work.startWantedWorker();
}

int ThreadPool::ProbeThreads(int wanted)
{
    // QThreadPool loses a runnable whose thread cannot be created, and then never comes to an end.
    const int given = ThrowAwayThreads().start(wanted);
    return given == wanted ? given : given / 2; // near the limit the rest of the process wants some too
}

void ThreadPool::start()
{
    work.setRunning(true);
}

void ThreadPool::stop()
{
    work.setRunning(false);
    cleanUp(false);
}

void ThreadPool::clear()
{
    work.discardQueued();
}

bool ThreadPool::stopAndWait(int milliseconds)
{
    stop();
    clear();
    if (utils::CurrentPool::Contains(this))
        return false;

    const QDeadlineTimer deadline(milliseconds);
    while (!work.waitUntilEmpty(qMin(deadline, QDeadlineTimer(StopReportMilliseconds)))) {
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
    return work.waitUntilEmpty(deadline) && QThreadPool::waitForDone(int(deadline.remainingTime()));
}

void ThreadPool::logRunning() const
{
    const auto descriptions = work.runningDescriptions(StopReportLines);
    for (const auto &description : descriptions) {
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
    work.cleanUp(all);
}

bool ThreadPool::takeAndRun(const utils::ObserverCore &observer)
{
    return work.takeAndRun(observer);
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
