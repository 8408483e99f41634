#pragma once

#include <shared/hierarchy/HierarchyNode.h>
#include <shared/hierarchy/utils/PrefixCounts.h>

#include <QStringView>

#include <memory>
#include <vector>

namespace Shared::Hierarchy::utils {

/*!
 * The children of one node, by id and in the order in which they came.
 *
 * A removed child leaves a hole in the order; holes are closed when they are the greater part, so that
 * removals in any order cost constant time each on average. The first question for a position in an order
 * with holes counts them through, the ones after that cost logarithmic time, and so does each change until
 * the holes are closed. A handful of children is searched one by one; beyond that the ids are found by an
 * open hash of positions, which takes a part of a text without making a text of it.
 *
 * Threads: none of its own, the lock of the node guards it.
 */
class HierarchyChildTable
{
public:
    using Node = std::shared_ptr<HierarchyNode>;

    /*! The child with this id, or null. Valid until the table changes. */
    const Node *find(QStringView id) const;
    /*! Appends \a node; its id must not be in the table. */
    void append(const QString &id, const Node &node);
    /*! Takes the child with this id out and returns it. */
    Node take(QStringView id);
    quint64 size() const { return live; }
    /*! The number of children before the one with this id, or the greatest number where there is none. */
    quint64 position(QStringView id) const;
    /*! The child with \a wanted children before it, or null. */
    const Node *at(quint64 wanted) const;
    /*! Takes all children out, in their order. */
    std::vector<Node> takeAll();

    /*! Calls \a visit with each child in order. */
    template <class Visitor>
    void forEach(const Visitor &visit) const
    {
        for (const Slot &slot : slots) {
            if (slot.node)
                visit(slot.node);
        }
    }
    /** Calls \a visit with the id of each child in order. */
    template <class Visitor>
    void forEachId(const Visitor &visit) const
    {
        for (const Slot &slot : slots) {
            if (slot.node)
                visit(slot.id);
        }
    }

private:
    struct Slot
    {
        QString id;
        Node node; // empty in a hole
        uint hash;
    };

    static constexpr quint32 NoPosition = ~quint32(0);

    static uint hashOf(QStringView id);
    size_t firstBucket(uint hash) const;
    quint32 slotOf(QStringView id) const;
    quint32 scan(QStringView id) const;
    void enter(quint32 position);
    const PrefixCounts &children() const;
    void closeHoles();
    void rebuildIndex();

    std::vector<Slot> slots;
    std::vector<quint32> index; // positions in slots, NoPosition where free; empty for a handful of children
    uint shift = 0; // what a hash is shifted by to become a place in the index
    quint32 live = 0;
    mutable PrefixCounts childCounts; // marks the slots that are no holes; empty until somebody asks
};

} // namespace Shared::Hierarchy::utils
