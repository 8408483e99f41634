#include "TrackedRunnable.h"

#include <QDeadlineTimer>
#include <QList>

#include <utility>

namespace Tessellum::Notification::utils {

TrackedRunnable::TrackedRunnable(std::shared_ptr<ObserverCore> observer,
                                 std::shared_ptr<RunnableCounter> counter, TaskDescription description)
    : m_observer(std::move(observer))
    , m_counter(std::move(counter))
    , m_description(std::move(description))
{
    m_counter->queued.fetch_add(1);
    setAutoDelete(false);
}

TrackedRunnable::~TrackedRunnable() = default;

void TrackedRunnable::begin()
{
    leaveQueue();
    m_counter->begun.fetch_add(1, std::memory_order_relaxed);
}

void TrackedRunnable::leaveQueue()
{
    if (!m_begun.exchange(true))
        m_counter->queued.fetch_sub(1);
}

void TrackedRunnable::end()
{
    leaveQueue();
    if (m_observer)
        m_observer->end();
}

void TrackedRunnable::finish()
{
    m_tracker->finish(this);
}

void ChainDeleter::operator()(TrackedRunnable *first) const
{
    while (first)
        delete std::exchange(first, first->m_next);
}

RunnableTracker::~RunnableTracker()
{
    const RunnableChain finished(m_finished);
    const RunnableChain unfinished(m_first);
}

void RunnableTracker::addLocked(TrackedRunnable *item)
{
    item->m_tracker = this;
    item->m_previous = m_last;
    (m_last ? m_last->m_next : m_first) = item;
    m_last = item;
    if (item->m_observer)
        item->m_observer->m_runnable = item;
}

void RunnableTracker::unlinkLocked(TrackedRunnable *item)
{
    (item->m_previous ? item->m_previous->m_next : m_first) = item->m_next;
    (item->m_next ? item->m_next->m_previous : m_last) = item->m_previous;
    item->m_previous = nullptr;
    item->m_next = nullptr;
    if (item->m_observer)
        item->m_observer->m_runnable = nullptr;
    if (!m_first && m_waiting > 0)
        m_nothingUnfinished.wakeAll();
}

RunnableChain RunnableTracker::takeFinishedLocked()
{
    return RunnableChain(std::exchange(m_finished, nullptr));
}

RunnableChain RunnableTracker::takeUnfinishedLocked(const std::function<bool(TrackedRunnable *)> &take)
{
    TrackedRunnable *first = nullptr;
    TrackedRunnable **end = &first;
    for (TrackedRunnable *item = m_first; item;) {
        TrackedRunnable *const next = item->m_next;
        if (!item->m_begun && take(item)) {
            unlinkLocked(item);
            *end = item;
            end = &item->m_next;
        }
        item = next;
    }
    return RunnableChain(first);
}

TrackedRunnable *RunnableTracker::queuedItemLocked(const ObserverCore &observer) const
{
    TrackedRunnable *const item = observer.m_runnable;
    return item && !item->m_begun ? item : nullptr;
}

void RunnableTracker::finish(TrackedRunnable *item)
{
    // The observer and the values of the description go before the item does: they may be the last of their
    // kind.
    std::shared_ptr<ObserverCore> observer;
    TaskDescription description;
    {
        const QMutexLocker locker(&m_mutex);
        unlinkLocked(item);
        observer.swap(item->m_observer);
        std::swap(description, item->m_description);
        item->m_next = m_finished;
        m_finished = item;
    }
}

bool RunnableTracker::waitForFinished(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    const QMutexLocker locker(&m_mutex);
    ++m_waiting;
    while (m_first && m_nothingUnfinished.wait(&m_mutex, deadline)) { }
    --m_waiting;
    return !m_first;
}

QStringList RunnableTracker::runningDescriptions(int limit) const
{
    QList<TaskDescription> running;
    {
        const QMutexLocker locker(&m_mutex);
        for (const TrackedRunnable *item = m_first; item && running.size() < limit; item = item->m_next) {
            if (item->m_begun)
                running.append(item->m_description);
        }
    }
    QStringList texts;
    for (const auto &description : qAsConst(running))
        texts.append(description.text());
    return texts;
}

} // namespace Tessellum::Notification::utils
