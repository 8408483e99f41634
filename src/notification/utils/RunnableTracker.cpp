#include "RunnableTracker.h"

#include <utility>

namespace Tessellum::Notification::utils {

void RunnableList::append(TrackedRunnable *item)
{
    item->m_previous = m_last;
    item->m_next = nullptr;
    (m_last ? m_last->m_next : m_first) = item;
    m_last = item;
}

void RunnableList::unlink(TrackedRunnable *item)
{
    (item->m_previous ? item->m_previous->m_next : m_first) = item->m_next;
    (item->m_next ? item->m_next->m_previous : m_last) = item->m_previous;
}

TrackedRunnable *RunnableList::takeAll()
{
    m_last = nullptr;
    return std::exchange(m_first, nullptr);
}

RunnableTracker::~RunnableTracker()
{
    for (RunnableList *list : {&m_finished, &m_running, &m_queued})
        RunnableChain(list->takeAll()).reset();
}

void RunnableTracker::add(std::unique_ptr<TrackedRunnable> item)
{
    if (item->m_observer)
        item->m_observer->m_runnable = item.get();
    m_queued.append(item.release());
}

void RunnableTracker::begin(TrackedRunnable *item)
{
    m_queued.unlink(item);
    m_running.append(item);
    if (item->m_observer)
        item->m_observer->m_runnable = nullptr;
    item->leaveQueue();
    item->m_counter->begun.fetch_add(1, std::memory_order_relaxed);
}

TrackedRunnable *RunnableTracker::takeNext()
{
    TrackedRunnable *const item = m_queued.first();
    if (item)
        begin(item);
    return item;
}

TrackedRunnable *RunnableTracker::take(const ObserverCore &observer)
{
    TrackedRunnable *const item = observer.m_runnable;
    if (item)
        begin(item);
    return item;
}

void RunnableTracker::finish(TrackedRunnable *item, Leftovers &leftovers)
{
    m_running.unlink(item);
    m_finished.append(item);
    leftovers.observer.swap(item->m_observer);
    std::swap(leftovers.description, item->m_description);
}

QList<TaskDescription> RunnableTracker::runningDescriptions(int limit) const
{
    QList<TaskDescription> descriptions;
    for (const TrackedRunnable *item = m_running.first(); item && descriptions.size() < limit;
         item = item->m_next)
        descriptions.append(item->m_description);
    return descriptions;
}

RunnableChain RunnableTracker::takeQueued()
{
    for (TrackedRunnable *item = m_queued.first(); item; item = item->m_next) {
        if (item->m_observer)
            item->m_observer->m_runnable = nullptr;
    }
    return RunnableChain(m_queued.takeAll());
}

RunnableChain RunnableTracker::takeFinished()
{
    return RunnableChain(m_finished.takeAll());
}

} // namespace Tessellum::Notification::utils
