#include "HandlerPool.h"

#include <QDeadlineTimer>

#include <system_error>
#include <utility>

namespace Tessellum::Notification::utils {

namespace {

constexpr int LookMilliseconds = 25; // a pool whose handlers run begins some in that time
constexpr int EmptyLooksBeforeRest = 40;

} // namespace

HandlerPool::HandlerPool(const QString &name, int requestedThreads, bool stopped)
    : ThreadPool(name, requestedThreads, stopped)
{ }

HandlerPool::~HandlerPool()
{
    HandlerPool::stopAndWait();
}

bool HandlerPool::stopAndWait(int milliseconds)
{
    const bool stopped = ThreadPool::stopAndWait(milliseconds);
    endWatching();
    return stopped;
}

void HandlerPool::adjustThreadCount()
{
    const QMutexLocker locker(&m_runnables.mutex());
    if (maxThreadCount() > MinimumThreadCount() && getQueuedCount() == 0
        && activeThreadCount() < MinimumThreadCount())
        QThreadPool::setMaxThreadCount(MinimumThreadCount());
}

void HandlerPool::watch()
{
    if (m_watching)
        return;
    const QMutexLocker locker(&m_watchMutex);
    m_watching = true;
    if (m_watcher.joinable()) {
        m_watchCondition.wakeOne();
        return;
    }
    try {
        auto end = std::make_shared<std::atomic<bool>>(false);
        m_watcher = std::thread([this, end] { watchQueue(*end); });
        m_endWatcher = std::move(end);
    } catch (const std::system_error &) {
        m_watching
            = false; // the next notification tries again; without threads there is nothing to raise anyway
    }
}

void HandlerPool::endWatching()
{
    std::thread watcher;
    {
        const QMutexLocker locker(&m_watchMutex);
        watcher.swap(m_watcher);
        if (m_endWatcher)
            m_endWatcher->store(true);
        m_endWatcher.reset();
        m_watching = false;
        m_watchCondition.wakeAll();
    }
    if (watcher.joinable())
        watcher.join();
}

void HandlerPool::watchQueue(const std::atomic<bool> &end)
{
    int emptyLooks = 0;
    while (!end) {
        const quint32 begunBefore = m_counter->begun;
        {
            const QMutexLocker locker(&m_watchMutex);
            const QDeadlineTimer look(LookMilliseconds);
            while (!end && m_watchCondition.wait(&m_watchMutex, look)) { }
        }
        if (end)
            return;
        growIfBlocked(begunBefore);
        emptyLooks = getQueuedCount() > 0 ? 0 : emptyLooks + 1;
        if (emptyLooks == EmptyLooksBeforeRest) {
            restUntilNeeded(end);
            emptyLooks = 0;
        }
    }
}

void HandlerPool::restUntilNeeded(const std::atomic<bool> &end)
{
    const QMutexLocker locker(&m_watchMutex);
    if (end)
        return;
    m_watching = false;
    // A notification that still saw the flag has counted before: it is found here.
    while (!end && !m_watching && getQueuedCount() == 0)
        m_watchCondition.wait(&m_watchMutex);
    if (!end)
        m_watching = true;
}

void HandlerPool::growIfBlocked(quint32 begunBefore)
{
    int current = 0;
    {
        const QMutexLocker locker(&m_runnables.mutex());
        current = maxThreadCount();
        if (getQueuedCount() == 0 || m_counter->begun != begunBefore || activeThreadCount() < current
            || current >= CeilingThreadCount())
            return;
    }
    raiseMaxThreadCount(current, qMin(2 * current, CeilingThreadCount()));
}

} // namespace Tessellum::Notification::utils
