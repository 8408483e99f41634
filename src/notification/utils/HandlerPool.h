#pragma once

#include <notification/ThreadPool.h>
#include <notification/utils/HandlerRunnable.h>

#include <QMutex>
#include <QWaitCondition>

#include <atomic>
#include <memory>
#include <thread>

namespace Tessellum::Notification::utils {

/*!
 * The pool that calls handlers. Handlers may block, also on each other, so it doubles for as long as some
 * wait in the queue while none begins, up to CeilingThreadCount(); short handlers, however many, do not make
 * it grow. A small watching thread looks for that while handlers are queued, so that it needs no further
 * notification. The maximum falls back to MinimumThreadCount() with a notification that finds the pool idle.
 *
 * Lock: watchMutex guards the state of the watching thread; it is taken before the mutex of the work queue
 * and held neither while threads are tried out nor while that thread is joined.
 */
class TESSELLUM_EXPORT HandlerPool : public ThreadPool
{
public:
    HandlerPool(const QString &name, int requestedThreads, bool stopped);
    ~HandlerPool() override;

    /*! Queues a call of the handler of \a handle with \a arguments; nothing happens on a stopped pool. */
    template <class Handler, class... Arguments>
    void startHandler(const std::shared_ptr<NotificationHandle<Handler>> &handle, Arguments &&...arguments)
    {
        if (!isRunning()) {
            cleanUp(false);
            return;
        }
        adjustThreadCount();
        if (launch(std::make_unique<HandlerRunnable<Handler>>(handle, std::forward<Arguments>(arguments)...)))
            watch();
    }

    /*! As ThreadPool::stopAndWait(), and ends the watching thread. */
    bool stopAndWait(int milliseconds = -1);
    bool lendsPlaces() const override { return false; }

    /*! The most threads the pool ever has. */
    static int CeilingThreadCount() { return 1024; }

protected:
    void adjustThreadCount() override;

private:
    using EndFlag = std::shared_ptr<std::atomic<bool>>;

    void watch();
    void endWatching();
    void watchQueue(const std::atomic<bool> &end);
    void restUntilNeeded(const std::atomic<bool> &end);
    void growIfBlocked(quint32 begunBefore);

    QMutex watchMutex;
    QWaitCondition watchCondition;
    std::thread watcher;
    EndFlag endWatcher; // of the present watching thread
    std::atomic<bool> watching = false; // false while that thread rests or there is none
};

} // namespace Tessellum::Notification::utils
