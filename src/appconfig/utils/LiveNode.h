#pragma once

#include <shared/hierarchy/HierarchyNode.h>

#include <QList>
#include <QMetaType>

#include <memory>

namespace Tessellum::AppConfig::utils {

/*! The node of \a node, or empty where it has gone: expired, or taken off the tree and still held by someone.
 */
inline std::shared_ptr<Shared::Hierarchy::HierarchyNode>
LockLiveNode(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node)
{
    auto locked = node.lock();
    if (locked && locked->isDeleteFlagSet())
        locked.reset();
    return locked;
}

/*! Whether all \a nodes, from a parent down to what was hung in, still belong to a tree. One that has got its
 * flag but has not left its parent yet leaves it now, so that the next attempt does not meet it again. */
inline bool AreAllLive(const QList<std::shared_ptr<Shared::Hierarchy::HierarchyNode>> &nodes)
{
    bool live = true;
    for (const auto &node : nodes) {
        if (node->isDeleteFlagSet()) {
            node->setParent({}, true);
            live = false;
        }
    }
    return live;
}

} // namespace Tessellum::AppConfig::utils

/*! The payload of a delete task that keeps its node until it has run. */
Q_DECLARE_METATYPE(std::shared_ptr<Shared::Hierarchy::HierarchyNode>)
