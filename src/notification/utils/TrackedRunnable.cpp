#include "TrackedRunnable.h"

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

void TrackedRunnable::leaveQueue()
{
    if (std::exchange(m_isQueued, false))
        m_counter->queued.fetch_sub(1);
}

void TrackedRunnable::end()
{
    leaveQueue();
    if (m_observer)
        m_observer->end();
}

void ChainDeleter::operator()(TrackedRunnable *first) const
{
    while (first)
        delete std::exchange(first, first->m_next);
}

} // namespace Tessellum::Notification::utils
