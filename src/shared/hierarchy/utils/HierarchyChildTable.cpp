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
    if (!childCounts.isEmpty())
        childCounts.append(true);
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
    if (!childCounts.isEmpty())
        childCounts.unmark(position);
    if (slots.size() > 2 * size_t(live))
        closeHoles();
    return taken;
}

quint64 HierarchyChildTable::position(QStringView id) const
{
    const quint32 found = slotOf(id);
    if (found == NoPosition)
        return ~quint64(0);
    return live == slots.size() ? found : children().before(found);
}

const HierarchyChildTable::Node *HierarchyChildTable::at(quint64 wanted) const
{
    if (wanted >= live)
        return nullptr;
    return &slots[live == slots.size() ? size_t(wanted) : children().find(quint32(wanted))].node;
}

const PrefixCounts &HierarchyChildTable::children() const
{
    if (childCounts.isEmpty()) {
        for (const Slot &slot : slots)
            childCounts.append(slot.node != nullptr);
    }
    return childCounts;
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
    childCounts.clear();
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
    childCounts.clear();
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
