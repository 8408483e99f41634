#include <appdata/data/elements/PendingCreateCounterTracker.h>
#include <appdata/data/entries/Entry.h>

namespace Tessellum::AppData::Data::Elements {

PendingCreateCounterTracker::PendingCreateCounterTracker(const std::shared_ptr<Entries::Entry> &counted,
                                                         quint32 number)
    : entry(counted)
    , remaining(number)
{
    if (counted)
        counted->dataLocked().serialize.pendingCreates.add(number); // atomic, so that it needs no lock
}

PendingCreateCounterTracker::~PendingCreateCounterTracker()
{
    finishAll();
}

void PendingCreateCounterTracker::finishOne()
{
    quint32 number = remaining.load();
    while (number > 0 && !remaining.compare_exchange_weak(number, number - 1)) { }
    if (number > 0)
        release(1);
}

void PendingCreateCounterTracker::finishAll()
{
    release(remaining.exchange(0));
}

void PendingCreateCounterTracker::release(quint32 number) const
{
    if (number == 0)
        return;
    if (const auto counted = entry.lock())
        counted->dataLocked().serialize.pendingCreates.subtract(number);
}

} // namespace Tessellum::AppData::Data::Elements
