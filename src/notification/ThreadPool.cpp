#include "ThreadPool.h"

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
    const QMutexLocker locker(&m_runnables.mutex());
    finished = m_runnables.takeFinishedLocked();
    if (!isRunning())
        return false;
    utils::TrackedRunnable *const item = wrapper.release();
    m_runnables.addLocked(item);
    QThreadPool::start(item, 0);
    return true;
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
            setMaxThreadCount(wanted);
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
    const QMutexLocker locker(&m_runnables.mutex());
    if (further > 0 && maxThreadCount() == current)
        setMaxThreadCount(current + further);
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
    discarded = m_runnables.takeUnfinishedLocked([this](QRunnable *item) { return tryTake(item); });
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
    // What a waiting thread of another pool took over runs outside of this pool's threads.
    while (!waitForDone(slice()) || !m_runnables.waitForFinished(slice())) {
        if (deadline.hasExpired())
            return false;
        const auto descriptions = m_runnables.runningDescriptions(StopReportLines);
        for (const auto &description : descriptions) {
            Shared::Logging::FrameworkLog().warning()
                << "ThreadPool::stopAndWait(" << m_name << ") still waiting for " << description;
        }
    }
    cleanUp(true);
    return true;
}

std::unique_ptr<ThreadPool> ThreadPool::clone(const QString &name) const
{
    return std::make_unique<ThreadPool>(name, m_createFactory, m_updateFactory, m_deleteFactory,
                                        maxThreadCount(), !isRunning());
}

void ThreadPool::cleanUp(bool all)
{
    utils::RunnableChain finished;
    utils::RunnableChain unfinished;
    const QMutexLocker locker(&m_runnables.mutex());
    finished = m_runnables.takeFinishedLocked();
    if (all)
        unfinished = m_runnables.takeUnfinishedLocked([](QRunnable *) { return true; });
}

bool ThreadPool::takeAndRun(const utils::ObserverCore &observer)
{
    utils::TrackedRunnable *item = nullptr;
    {
        const QMutexLocker locker(&m_runnables.mutex());
        item = m_runnables.queuedItemLocked(observer);
        if (!item || !tryTake(item))
            return false;
    }
    item->run();
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
