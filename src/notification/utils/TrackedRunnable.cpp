#include "TrackedRunnable.h"

#include <utility>

namespace Tessellum::Notification::utils {

TrackedRunnable::TrackedRunnable(std::shared_ptr<ObserverCore> ended, RunnableCounter &queued,
                                 TaskDescription text)
    : observer(std::move(ended))
    , counter(queued)
    , description(std::move(text))
{
    counter.count.fetch_add(1);
    setAutoDelete(false);
}

TrackedRunnable::~TrackedRunnable() = default;

void TrackedRunnable::leaveQueue()
{
    if (std::exchange(isQueued, false))
        counter.count.fetch_sub(1);
}

void TrackedRunnable::end()
{
    leaveQueue();
    if (observer)
        observer->end();
}

void ChainDeleter::operator()(TrackedRunnable *first) const
{
    while (first)
        delete std::exchange(first, first->next);
}

} // namespace Tessellum::Notification::utils
