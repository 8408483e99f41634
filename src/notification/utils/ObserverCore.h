#pragma once

#include <shared/TessellumExport.h>

#include <QtGlobal>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace Tessellum::Notification::utils {

class TrackedRunnable;

/*!
 * What the observers of all kinds of tasks share: the marks that end a wait.
 *
 * Any thread may call. Lock: mutex guards both marks and the result of the derived class; it is never held
 * while a callback runs. The marks are atomic as well, so that asking for them costs no lock.
 */
class TESSELLUM_EXPORT ObserverCore
{
public:
    ObserverCore() = default;
    virtual ~ObserverCore();
    Q_DISABLE_COPY(ObserverCore)

    /*! True once a report reached the wait point. */
    bool hasFinished() const { return finished.load(std::memory_order_acquire); }

    /*! True once the task is over, by its end, an exception or because it was discarded. */
    bool isEnded() const { return ended.load(std::memory_order_acquire); }

    /*! Returns once a report has reached the wait point or the task is over; at once if that was before. */
    void wait();

    /*! Marks the task as over and releases all who wait. Called by the pool; calls after the first do
     * nothing. */
    void end();

    /*!
     * Has \a function called once the task is over, by the thread that ends it, or at once by the caller if
     * it is over already. One function for each observer. No lock is held; it must not wait.
     */
    void whenEnded(std::function<void()> function);

protected:
    /*! Marks the wait point as reached. The caller holds the mutex and calls wake() behind it. */
    void finishLocked() { finished.store(true, std::memory_order_release); }
    /*! Releases all who wait. Without the mutex, which is the first thing that they take. */
    void wake() { condition.notify_all(); }

    mutable std::mutex mutex; // of std: it and the condition cost no allocation, and every task has one

private:
    friend class RunnableTracker;

    std::condition_variable condition;
    std::atomic<bool> finished = false;
    std::atomic<bool> ended = false;
    std::unique_ptr<std::function<void()>> endFunction; // few tasks have one
    TrackedRunnable *runnable = nullptr; // of the pool's tracker, guarded by the tracker's mutex
};

} // namespace Tessellum::Notification::utils
