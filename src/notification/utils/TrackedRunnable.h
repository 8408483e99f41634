#pragma once

#include <notification/utils/ObserverCore.h>
#include <notification/utils/TaskDescription.h>
#include <notification/utils/TaskInfoInterface.h>

#include <QRunnable>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

namespace Tessellum::Notification::utils {

class RunnableTracker;
struct ChainDeleter;

/*! The number of runnables that are created and not yet begun, and how many have begun since ever. */
struct RunnableCounter
{
    std::atomic<int> queued = 0;
    std::atomic<quint32> begun = 0;
};

/*! What a RunnableTracker links into its lists. */
class TESSELLUM_EXPORT TrackedRunnable : public QRunnable, public TaskInfoInterface
{
public:
    ~TrackedRunnable() override;

    /*! The description that the wrapped runnable had when this was made. */
    QString getDescription() const override { return m_description.text(); }

protected:
    /*! Counts as queued from here on. \a observer may be null. */
    TrackedRunnable(std::shared_ptr<ObserverCore> observer, std::shared_ptr<RunnableCounter> counter,
                    TaskDescription description);

    /*! Takes the item off the queued count: its run begins. */
    void begin();
    /*! Takes the item off the queued count if it never began, and ends the observer if there is one. */
    void end();
    /*! Moves the item to the tracker's finished ones. The item may be deleted by then. */
    void finish();

private:
    friend class RunnableTracker;
    friend struct ChainDeleter;

    void leaveQueue();

    std::shared_ptr<ObserverCore> m_observer;
    std::shared_ptr<RunnableCounter> m_counter;
    TaskDescription m_description;
    std::atomic<bool> m_begun = false;
    RunnableTracker *m_tracker = nullptr;
    TrackedRunnable *m_previous = nullptr; // both of the tracker, guarded by its mutex
    TrackedRunnable *m_next = nullptr;
};

/*! Frees a chain of runnables. */
struct TESSELLUM_EXPORT ChainDeleter
{
    /*! Deletes \a first and all that are linked behind it. Runs foreign destructors: never under a lock. */
    void operator()(TrackedRunnable *first) const;
};
using RunnableChain = std::unique_ptr<TrackedRunnable, ChainDeleter>;

/*!
 * The record of a pool's runnables: those that are unfinished, in the order of their start, and those that
 * wait to be deleted. Entering, finishing and taking cost the same however many there are.
 *
 * Lock: mutex() guards both lists, the links in the items and the link from an observer to its item. It is
 * taken before the mutex of QThreadPool and after none; nothing is deleted and no foreign code runs under it.
 * Functions ending in Locked expect the caller to hold it.
 */
class TESSELLUM_EXPORT RunnableTracker
{
public:
    RunnableTracker() = default;
    ~RunnableTracker();
    Q_DISABLE_COPY(RunnableTracker)

    QMutex &mutex() const { return m_mutex; }

    /*! Appends \a item to the unfinished ones; the tracker owns it from here on. */
    void addLocked(TrackedRunnable *item);
    /*! Gives away the finished items. */
    [[nodiscard]] RunnableChain takeFinishedLocked();
    /*! Gives away every unfinished item, oldest first, that \a take answers with true. */
    [[nodiscard]] RunnableChain takeUnfinishedLocked(const std::function<bool(TrackedRunnable *)> &take);
    /*! The item that reports to \a observer if it has not begun, or null. */
    TrackedRunnable *queuedItemLocked(const ObserverCore &observer) const;

    /*! Moves \a item from the unfinished to the finished ones. */
    void finish(TrackedRunnable *item);
    /*! Waits until nothing is unfinished; false if \a milliseconds ran out. -1: no limit. */
    bool waitForFinished(int milliseconds);
    /*! The descriptions of those that run now, \a limit at most. */
    QStringList runningDescriptions(int limit) const;

private:
    void unlinkLocked(TrackedRunnable *item);

    mutable QMutex m_mutex;
    QWaitCondition m_nothingUnfinished;
    int m_waiting = 0; // threads that wait for that
    TrackedRunnable *m_first = nullptr;
    TrackedRunnable *m_last = nullptr;
    TrackedRunnable *m_finished = nullptr;
};

} // namespace Tessellum::Notification::utils
