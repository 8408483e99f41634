#include "RunnableTracker.h"

#include <utility>

namespace Tessellum::Notification::utils {

void RunnableList::append(TrackedRunnable *item)
{
    item->previous = tail;
    item->next = nullptr;
    (tail ? tail->next : head) = item;
    tail = item;
}

void RunnableList::unlink(TrackedRunnable *item)
{
    (item->previous ? item->previous->next : head) = item->next;
    (item->next ? item->next->previous : tail) = item->previous;
}

TrackedRunnable *RunnableList::takeAll()
{
    tail = nullptr;
    return std::exchange(head, nullptr);
}

RunnableTracker::~RunnableTracker()
{
    for (RunnableList *list : {&finished, &running, &queued})
        RunnableChain(list->takeAll()).reset();
}

void RunnableTracker::add(std::unique_ptr<TrackedRunnable> item)
{
    if (item->observer)
        item->observer->runnable = item.get();
    queued.append(item.release());
    anyQueued.store(true, std::memory_order_relaxed);
}

void RunnableTracker::begin(TrackedRunnable *item)
{
    queued.unlink(item);
    anyQueued.store(queued.first() != nullptr, std::memory_order_relaxed);
    running.append(item);
    if (item->observer)
        item->observer->runnable = nullptr;
    item->leaveQueue();
    item->counter.begun.fetch_add(1, std::memory_order_relaxed);
}

TrackedRunnable *RunnableTracker::takeNext()
{
    TrackedRunnable *const item = queued.first();
    if (item)
        begin(item);
    return item;
}

TrackedRunnable *RunnableTracker::take(const ObserverCore &observer)
{
    TrackedRunnable *const item = observer.runnable;
    if (item)
        begin(item);
    return item;
}

void RunnableTracker::finish(TrackedRunnable *item, Leftovers &leftovers)
{
    running.unlink(item);
    finished.append(item);
    leftovers.observer.swap(item->observer);
    std::swap(leftovers.description, item->description);
}

QList<TaskDescription> RunnableTracker::runningDescriptions(int limit) const
{
    QList<TaskDescription> descriptions;
    for (const TrackedRunnable *item = running.first(); item && descriptions.size() < limit;
         item = item->next)
        descriptions.append(item->description);
    return descriptions;
}

RunnableChain RunnableTracker::takeQueued()
{
    for (TrackedRunnable *item = queued.first(); item; item = item->next) {
        if (item->observer)
            item->observer->runnable = nullptr;
    }
    anyQueued.store(false, std::memory_order_relaxed);
    return RunnableChain(queued.takeAll());
}

RunnableChain RunnableTracker::takeFinished()
{
    return RunnableChain(finished.takeAll());
}

} // namespace Tessellum::Notification::utils
