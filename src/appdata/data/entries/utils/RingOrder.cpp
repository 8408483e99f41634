#include <appdata/data/elements/Element.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/utils/RingOrder.h>
#include <shared/synchronization/ScopedLock.h>

namespace Tessellum::AppData::Data::Entries::utils {

using Elements::Element;

void PointRingAtOldest(Entry &entry)
{
    const quint64 capacity = entry.getCapacity();
    // Most entries are no full ring, and a copy of their elements for each few that come costs the square.
    if (capacity == 0 || entry.getNumberOfChildren() < capacity)
        return;
    const auto children = entry.getChildren(false);
    if (quint64(children.size()) < capacity)
        return;
    // Elements behind the capacity are out of the ring's reach.
    const auto end = children.cbegin() + int(capacity);
    const auto timestamp = [](const auto &child) {
        const auto *const element = dynamic_cast<const Element *>(child.get());
        return element ? element->getTimestamp() : ~quint64(0);
    };
    quint64 smallest = ~quint64(0);
    quint64 oldest = 0;
    for (auto child = children.cbegin(); child != end; ++child) {
        const quint64 stamp = timestamp(*child);
        if (stamp >= smallest)
            continue;
        smallest = stamp;
        oldest = quint64(child - children.cbegin());
    }
    // Not while the elements are read, which may be busy with their medium.
    const Shared::Synchronization::ScopedLock lock(&entry);
    quint64 &counter = entry.dataLocked().serialize.addCounter;
    counter += (capacity - counter % capacity) % capacity + oldest;
}

} // namespace Tessellum::AppData::Data::Entries::utils
