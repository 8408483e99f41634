#pragma once

#include <notification/utils/ObserverCore.h>
#include <notification/utils/TaskDescription.h>
#include <notification/utils/TaskInfoInterface.h>

#include <QRunnable>

#include <atomic>
#include <memory>

namespace Tessellum::Notification::utils {

class RunnableTracker;
struct ChainDeleter;

/*! The number of runnables that are created and not yet begun, and how many have begun since ever. */
struct RunnableCounter
{
    std::atomic<int> count = 0;
    std::atomic<quint32> begun = 0;
};

/*! What a RunnableTracker keeps in its lists. */
class TESSELLUM_EXPORT TrackedRunnable : public QRunnable, public TaskInfoInterface
{
public:
    ~TrackedRunnable() override;

    /*! The description that the wrapped runnable had when this was made. */
    QString getDescription() const override { return description.text(); }

protected:
    /*! Counts as queued from here on. \a ended is the observer, which may be null; \a queued is the pool's
     * and outlives the item. */
    TrackedRunnable(std::shared_ptr<ObserverCore> ended, RunnableCounter &queued, TaskDescription text);

    /*! Takes the item off the queued count if it never began, and ends the observer if there is one. */
    void end();

private:
    friend class RunnableTracker;
    friend class RunnableList;
    friend struct ChainDeleter;

    void leaveQueue();

    std::shared_ptr<ObserverCore> observer;
    RunnableCounter &counter;
    TaskDescription description;
    bool isQueued = true; // changed by the owner of the item: its maker, the tracker's mutex, who takes it
    TrackedRunnable *previous = nullptr; // both guarded by the tracker's mutex
    TrackedRunnable *next = nullptr;
};

/*! Frees a chain of runnables. */
struct TESSELLUM_EXPORT ChainDeleter
{
    /*! Deletes \a first and all that are linked behind it. Runs foreign destructors: never under a lock. */
    void operator()(TrackedRunnable *first) const;
};
using RunnableChain = std::unique_ptr<TrackedRunnable, ChainDeleter>;

} // namespace Tessellum::Notification::utils
