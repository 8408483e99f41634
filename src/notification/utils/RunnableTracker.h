#pragma once

#include <notification/utils/TrackedRunnable.h>

#include <QList>
#include <QMutex>

#include <atomic>
#include <memory>

namespace Tessellum::Notification::utils {

/*! A list that is linked through its items. */
class RunnableList
{
public:
    TrackedRunnable *first() const { return head; }
    void append(TrackedRunnable *item);
    void unlink(TrackedRunnable *item);
    /*! Gives away all items as a chain. */
    TrackedRunnable *takeAll();

private:
    TrackedRunnable *head = nullptr;
    TrackedRunnable *tail = nullptr;
};

/*!
 * The record of a pool's runnables: those that are queued, in the order of their start, those that run, and
 * those that wait to be deleted. Each step costs the same however many there are.
 *
 * Lock: mutex guards the lists, the links in the items and the link from an observer to its item. The
 * caller of every function here but hasQueued() holds it. It is taken before the mutex of QThreadPool and
 * after none; nothing is deleted and no foreign code runs under it.
 */
class TESSELLUM_EXPORT RunnableTracker
{
public:
    /*! What an item held that must be freed without the lock, and before the item itself is. */
    struct Leftovers
    {
        std::shared_ptr<ObserverCore> observer;
        TaskDescription description;
    };

    RunnableTracker() = default;
    ~RunnableTracker();
    Q_DISABLE_COPY(RunnableTracker)

    mutable QMutex mutex;

    /*! Appends \a item to the queued ones; the tracker owns it from here on. */
    void add(std::unique_ptr<TrackedRunnable> item);
    /*! Makes the oldest queued item a running one and returns it; null if nothing is queued. */
    TrackedRunnable *takeNext();
    /*! Makes the item that reports to \a observer a running one and returns it; null if it is not queued. */
    TrackedRunnable *take(const ObserverCore &observer);
    /*! Makes the running \a item a finished one. */
    void finish(TrackedRunnable *item, Leftovers &leftovers);

    /*! True if something is queued. Needs the mutex only where the answer must hold for longer. */
    bool hasQueued() const { return anyQueued.load(std::memory_order_relaxed); }
    bool hasRunning() const { return running.first() != nullptr; }
    /*! The descriptions of those that run now, \a limit at most, to be made into texts without the lock. */
    QList<TaskDescription> runningDescriptions(int limit) const;
    /*! Gives away the queued items, oldest first. */
    [[nodiscard]] RunnableChain takeQueued();
    /*! Gives away the finished items. */
    [[nodiscard]] RunnableChain takeFinished();

private:
    void begin(TrackedRunnable *item);

    std::atomic<bool> anyQueued = false; // whether the list of queued items holds one
    RunnableList queued;
    RunnableList running;
    RunnableList finished;
};

} // namespace Tessellum::Notification::utils
