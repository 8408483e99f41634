#include <shared/hierarchy/utils/HierarchyChildTable.h>

#include <QHash>

#include <algorithm>
#include <iterator>

namespace Shared::Hierarchy::utils {

namespace {

constexpr size_t Handful = 8;

} // namespace

uint HierarchyChildTable::hashOf(QStringView id)
{
    return qHash(id, uint(qGlobalQHashSeed()));
}

size_t HierarchyChildTable::firstBucket(uint hash) const
{
    // Fibonacci hashing: the upper bits depend on all bits of the hash.
    return size_t(quint32(hash * 2654435769u) >> shift);
}

const HierarchyChildTable::Node *HierarchyChildTable::find(QStringView id) const
{
    const quint32 position = slotOf(id);
    return position == NoPosition ? nullptr : &slots[position].node;
}

quint32 HierarchyChildTable::slotOf(QStringView id) const
{
    if (index.empty())
        return scan(id);
    const uint hash = hashOf(id);
    const size_t mask = index.size() - 1;
    for (size_t bucket = firstBucket(hash);; bucket = (bucket + 1) & mask) {
        const quint32 position = index[bucket];
        if (position == NoPosition)
            return NoPosition;
        // A hole keeps its place in the index, and with it the way to the entries behind.
        const Slot &slot = slots[position];
        if (slot.hash == hash && slot.node && slot.id == id)
            return position;
    }
}

quint32 HierarchyChildTable::scan(QStringView id) const
{
    const auto same = [&id](const Slot &slot) { return slot.node && slot.id == id; };
    const auto found = std::find_if(slots.begin(), slots.end(), same);
    return found == slots.end() ? NoPosition : quint32(std::distance(slots.begin(), found));
}

void HierarchyChildTable::append(const QString &id, const Node &node)
{
    slots.push_back({id, node, hashOf(id)});
    ++live;
    // At most two thirds of the index are in use, holes included.
    if (slots.size() <= Handful)
        return;
    if (slots.size() * 3 > index.size() * 2)
        rebuildIndex();
    else
        enter(quint32(slots.size() - 1));
}

HierarchyChildTable::Node HierarchyChildTable::take(QStringView id)
{
    const quint32 position = slotOf(id);
    if (position == NoPosition)
        return Node();
    Node taken = std::move(slots[position].node);
    slots[position].node.reset();
    slots[position].id.clear();
    --live;
    if (slots.size() > 2 * size_t(live))
        closeHoles();
    return taken;
}

quint64 HierarchyChildTable::position(QStringView id) const
{
    const quint32 found = slotOf(id);
    if (found == NoPosition)
        return ~quint64(0);
    if (live == slots.size())
        return found;
    const auto isChild = [](const Slot &slot) { return slot.node != nullptr; };
    // From the nearer end: most look-ups are for late children.
    if (found < slots.size() / 2)
        return quint64(std::count_if(slots.begin(), slots.begin() + found, isChild));
    return live - quint64(std::count_if(slots.begin() + found, slots.end(), isChild));
}

const HierarchyChildTable::Node *HierarchyChildTable::at(quint64 wanted) const
{
    if (wanted >= live)
        return nullptr;
    if (live == slots.size())
        return &slots[wanted].node;
    for (const Slot &slot : slots) {
        if (slot.node && wanted-- == 0)
            return &slot.node;
    }
    return nullptr;
}

std::vector<HierarchyChildTable::Node> HierarchyChildTable::takeAll()
{
    std::vector<Node> all;
    all.reserve(live);
    for (Slot &slot : slots) {
        if (slot.node)
            all.push_back(std::move(slot.node));
    }
    slots.clear();
    index.clear();
    live = 0;
    return all;
}

void HierarchyChildTable::enter(quint32 position)
{
    const size_t mask = index.size() - 1;
    size_t bucket = firstBucket(slots[position].hash);
    while (index[bucket] != NoPosition)
        bucket = (bucket + 1) & mask;
    index[bucket] = position;
}

void HierarchyChildTable::closeHoles()
{
    const auto isHole = [](const Slot &slot) { return !slot.node; };
    slots.erase(std::remove_if(slots.begin(), slots.end(), isHole), slots.end());
    if (slots.capacity() > 64 && slots.capacity() > 4 * slots.size())
        slots.shrink_to_fit();
    if (!index.empty())
        rebuildIndex();
}

void HierarchyChildTable::rebuildIndex()
{
    if (slots.size() <= Handful) {
        std::vector<quint32>().swap(index);
        return;
    }
    uint bits = 4;
    while ((size_t(1) << bits) < slots.size() * 2)
        ++bits;
    shift = 32 - bits;
    index.assign(size_t(1) << bits, NoPosition);
    for (quint32 position = 0; position < slots.size(); ++position)
        enter(position);
}

} // namespace Shared::Hierarchy::utils
