#include "HandlerPool.h"

#include <QDeadlineTimer>

#include <system_error>
#include <utility>

namespace Tessellum::Notification::utils {

namespace {

constexpr int LookMilliseconds = 25; // a pool whose handlers run begins some in that time
constexpr int EmptyLooksBeforeRest = 40;

} // namespace

HandlerPool::HandlerPool(const QString &poolName, int requestedThreads, bool startStopped)
    : ThreadPool(poolName, requestedThreads, startStopped)
{ }

HandlerPool::~HandlerPool()
{
    HandlerPool::stopAndWait();
}

bool HandlerPool::stopAndWait(int milliseconds)
{
    const bool isAtRest = ThreadPool::stopAndWait(milliseconds);
    endWatching();
    return isAtRest;
}

void HandlerPool::adjustThreadCount()
{
    if (currentMaxThreadCount() <= MinimumThreadCount() || getQueuedCount() > 0)
        return;
    const QMutexLocker locker(&work.mutex());
    if (activeThreadCount() < MinimumThreadCount())
        setMaxThreadCountLocked(MinimumThreadCount());
}

void HandlerPool::watch()
{
    if (watching)
        return;
    const QMutexLocker locker(&watchMutex);
    watching = true;
    if (watcher.joinable()) {
        watchCondition.wakeOne();
        return;
    }
    try {
        auto end = std::make_shared<std::atomic<bool>>(false);
        watcher = std::thread([this, end] { watchQueue(*end); });
        endWatcher = std::move(end);
    } catch (const std::system_error &) {
        // The next notification tries again; without threads there is nothing to raise anyway.
        watching = false;
    }
}

void HandlerPool::endWatching()
{
    std::thread ending;
    {
        const QMutexLocker locker(&watchMutex);
        ending.swap(watcher);
        if (endWatcher)
            endWatcher->store(true);
        endWatcher.reset();
        watching = false;
        watchCondition.wakeAll();
    }
    if (ending.joinable())
        ending.join();
}

void HandlerPool::watchQueue(const std::atomic<bool> &end)
{
    int emptyLooks = 0;
    while (!end) {
        const quint32 begunBefore = queued.begun;
        {
            const QMutexLocker locker(&watchMutex);
            const QDeadlineTimer look(LookMilliseconds);
            while (!end && watchCondition.wait(&watchMutex, look)) { }
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
    const QMutexLocker locker(&watchMutex);
    if (end)
        return;
    watching = false;
    // A notification that still saw the flag has counted before: it is found here.
    while (!end && !watching && getQueuedCount() == 0)
        watchCondition.wait(&watchMutex);
    if (!end)
        watching = true;
}

void HandlerPool::growIfBlocked(quint32 begunBefore)
{
    int current = 0;
    {
        const QMutexLocker locker(&work.mutex());
        current = currentMaxThreadCount();
        if (getQueuedCount() == 0 || queued.begun != begunBefore || activeThreadCount() < current
            || current >= CeilingThreadCount())
            return;
    }
    raiseMaxThreadCount(current, qMin(2 * current, CeilingThreadCount()));
}

} // namespace Tessellum::Notification::utils
