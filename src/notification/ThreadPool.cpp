#include "ThreadPool.h"

#include <notification/utils/CurrentPool.h>
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
        m_end.release(int(m_threads.size()));
        for (auto &thread : m_threads)
            thread.join();
    }

    /*! Starts up to \a wanted threads; returns how many the system gave. */
    int start(int wanted)
    {
        m_threads.reserve(size_t(wanted));
        try {
            while (int(m_threads.size()) < wanted)
                m_threads.emplace_back([this] { m_end.acquire(); });
        } catch (const std::system_error &) {
            // No more to be had; what there is counts.
        }
        return int(m_threads.size());
    }

private:
    QSemaphore m_end;
    std::vector<std::thread> m_threads;
};

} // namespace

ThreadPool::ThreadPool(const QString &name, CreateFactory createFactory, UpdateFactory updateFactory,
                       DeleteFactory deleteFactory, int requestedThreads, bool stopped)
    : m_counter(std::make_shared<utils::RunnableCounter>())
    , m_name(name)
    , m_createFactory(std::move(createFactory))
    , m_updateFactory(std::move(updateFactory))
    , m_deleteFactory(std::move(deleteFactory))
    , m_stopped(stopped)
{
    const int threads = qMax(requestedThreads, MinimumThreadCount());
    if (threads != requestedThreads) {
        Shared::Logging::FrameworkLog().debug()
            << "ThreadPool::ThreadPool(" << name << ") changing requested minimum thread size from "
            << requestedThreads << " to " << threads;
    }
    setMaxThreadCount(threads);
}

ThreadPool::ThreadPool(const QString &name, int requestedThreads, bool stopped)
    : ThreadPool(name, nullptr, nullptr, nullptr, requestedThreads, stopped)
{ }

ThreadPool::~ThreadPool()
{
    ThreadPool::stopAndWait();
}

std::shared_ptr<CreateObserver> ThreadPool::startCreateTask(const NodePointer &root, const QString &path,
                                                            const QVariant &data,
                                                            const CreatePoint &waitPoint)
{
    return startTask<CreateTask>(m_createFactory, root, path, data, waitPoint);
}

std::shared_ptr<UpdateObserver> ThreadPool::startUpdateTask(const NodePointer &node, const QVariant &value,
                                                            const UpdatePoint &waitPoint)
{
    return startTask<UpdateTask>(m_updateFactory, node, value, waitPoint);
}

std::shared_ptr<DeleteObserver> ThreadPool::startDeleteTask(const NodePointer &root, const QString &path,
                                                            const QVariant &data,
                                                            const DeletePoint &waitPoint)
{
    return startTask<DeleteTask>(m_deleteFactory, root, path, data, waitPoint);
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
        const QMutexLocker locker(&m_runnables.mutex());
        finished = m_runnables.takeFinished();
        if (!isRunning())
            return false;
        m_runnables.add(std::move(wrapper));
        wantsWorker = wantsWorkerLocked();
        m_workers += wantsWorker;
    }
    // Behind the lock, which is the first thing that the woken thread takes. A stop waits for the worker.
    if (wantsWorker)
        QThreadPool::start(&m_worker, 0);
    return true;
}

bool ThreadPool::wantsWorkerLocked() const
{
    return m_workers < maxThreadCount() + m_lentPlaces;
}

void ThreadPool::startWantedWorkers()
{
    int further = 0;
    {
        const QMutexLocker locker(&m_runnables.mutex());
        for (int queued = getQueuedCount(); queued > 0 && wantsWorkerLocked(); --queued) {
            ++m_workers;
            ++further;
        }
    }
    for (; further > 0; --further)
        QThreadPool::start(&m_worker, 0);
}

ThreadPool::Worker::Worker(ThreadPool &pool)
    : m_pool(pool)
{
    setAutoDelete(false);
}

void ThreadPool::Worker::run()
{
    const utils::CurrentPool current(&m_pool);
    utils::TrackedRunnable *item = nullptr;
    while ((item = m_pool.exchangeItem(item)))
        item->run();
}

/*! Gives a finished item (or null) back and takes the next one; null ends the worker. */
utils::TrackedRunnable *ThreadPool::exchangeItem(utils::TrackedRunnable *finished)
{
    utils::RunnableTracker::Leftovers leftovers; // freed behind the lock
    const QMutexLocker locker(&m_runnables.mutex());
    if (finished)
        m_runnables.finish(finished, leftovers);
    const bool isTooMany = m_workers > maxThreadCount() + m_lentPlaces;
    utils::TrackedRunnable *const next = isTooMany ? nullptr : m_runnables.takeNext();
    if (!next) {
        --m_workers;
        if (m_waiting > 0)
            m_nothingRuns.wakeAll();
    }
    return next;
}

void ThreadPool::lendPlace()
{
    {
        const QMutexLocker locker(&m_runnables.mutex());
        ++m_lentPlaces;
    }
    releaseThread();
    startWantedWorkers();
}

void ThreadPool::takePlaceBack()
{
    reserveThread();
    const QMutexLocker locker(&m_runnables.mutex());
    --m_lentPlaces;
}

void ThreadPool::setMaxThreadCount(int threads)
{
    {
        const QMutexLocker locker(&m_runnables.mutex());
        QThreadPool::setMaxThreadCount(threads);
    }
    startWantedWorkers();
}

void ThreadPool::adjustThreadCount()
{
    int current = 0;
    int wanted = 0;
    {
        const QMutexLocker locker(&m_runnables.mutex());
        current = maxThreadCount();
        wanted = wantedThreadCountLocked(current);
        if (wanted < current)
            QThreadPool::setMaxThreadCount(wanted);
    }
    if (wanted > current)
        raiseMaxThreadCount(current, wanted);
}

int ThreadPool::wantedThreadCountLocked(int current)
{
    const int minimum = MinimumThreadCount();
    const int queued = getQueuedCount();
    if (queued >= current - 1 && MaximumThreadCount() > current)
        return qMin(2 * current, MaximumThreadCount());
    if (queued >= minimum) {
        m_idleTimer.invalidate();
        return current;
    }
    if (!m_idleTimer.isValid()) {
        m_idleTimer.start();
        return current;
    }
    if (m_idleTimer.elapsed() < IdleMilliseconds)
        return current;
    m_idleTimer.invalidate();
    return qMax(minimum, current / 2);
}

void ThreadPool::raiseMaxThreadCount(int current, int wanted)
{
    const int further = ProbeThreads(wanted - current);
    if (further <= 0)
        return;
    {
        const QMutexLocker locker(&m_runnables.mutex());
        if (maxThreadCount() != current) // somebody else was faster
            return;
        QThreadPool::setMaxThreadCount(current + further);
    }
    startWantedWorkers();
}

int ThreadPool::ProbeThreads(int wanted)
{
    // QThreadPool loses a runnable whose thread cannot be created, and then never comes to an end.
    const int given = ThrowAwayThreads().start(wanted);
    return given == wanted ? given : given / 2; // near the limit the rest of the process wants some too
}

void ThreadPool::start()
{
    m_stopped.store(false, std::memory_order_release);
}

void ThreadPool::stop()
{
    {
        const QMutexLocker locker(&m_runnables.mutex());
        m_stopped.store(true, std::memory_order_release);
    }
    cleanUp(false);
}

void ThreadPool::clear()
{
    utils::RunnableChain discarded; // ended and freed behind the lock
    const QMutexLocker locker(&m_runnables.mutex());
    discarded = m_runnables.takeQueued();
}

bool ThreadPool::stopAndWait(int milliseconds)
{
    stop();
    clear();
    if (utils::CurrentPool::Contains(this))
        return false;

    const QDeadlineTimer deadline(milliseconds);
    const auto slice = [&deadline] {
        return deadline.isForever() ? StopReportMilliseconds
                                    : int(qMin<qint64>(deadline.remainingTime(), StopReportMilliseconds));
    };
    while (!waitForWorkers(slice())) {
        if (deadline.hasExpired())
            return false;
        logRunning();
    }
    if (!waitForDone(deadline.isForever() ? -1
                                          : int(deadline.remainingTime()))) // some free what their task held
        return false;
    cleanUp(true);
    return true;
}

bool ThreadPool::waitForWorkers(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    const QMutexLocker locker(&m_runnables.mutex());
    // What a waiting thread of another pool took over runs without a worker.
    const auto isOver = [this] { return m_workers == 0 && !m_runnables.hasRunning(); };
    ++m_waiting;
    while (!isOver() && m_nothingRuns.wait(&m_runnables.mutex(), deadline)) { }
    --m_waiting;
    return isOver();
}

void ThreadPool::logRunning() const
{
    QList<utils::TaskDescription> descriptions;
    {
        const QMutexLocker locker(&m_runnables.mutex());
        descriptions = m_runnables.runningDescriptions(StopReportLines);
    }
    for (const auto &description : qAsConst(descriptions)) {
        Shared::Logging::FrameworkLog().warning()
            << "ThreadPool::stopAndWait(" << m_name << ") still waiting for " << description.text();
    }
}

std::unique_ptr<ThreadPool> ThreadPool::clone(const QString &name) const
{
    return std::make_unique<ThreadPool>(name, m_createFactory, m_updateFactory, m_deleteFactory,
                                        maxThreadCount(), !isRunning());
}

void ThreadPool::cleanUp(bool all)
{
    utils::RunnableChain finished;
    utils::RunnableChain queued;
    const QMutexLocker locker(&m_runnables.mutex());
    finished = m_runnables.takeFinished();
    if (all)
        queued = m_runnables.takeQueued();
}

bool ThreadPool::takeAndRun(const utils::ObserverCore &observer)
{
    utils::TrackedRunnable *item = nullptr;
    {
        const QMutexLocker locker(&m_runnables.mutex());
        item = m_runnables.take(observer);
    }
    if (!item)
        return false;
    {
        const utils::CurrentPool current(this);
        item->run();
    }
    utils::RunnableTracker::Leftovers leftovers; // freed behind the lock
    const QMutexLocker locker(&m_runnables.mutex());
    m_runnables.finish(item, leftovers);
    if (m_waiting > 0)
        m_nothingRuns.wakeAll();
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
