#pragma once

#include <shared/hierarchy/HierarchyNode.h>

#include <QList>
#include <QMetaType>

#include <algorithm>
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

/*! Whether none of \a nodes has been taken off the tree for good. */
inline bool AreAllLive(const QList<std::shared_ptr<Shared::Hierarchy::HierarchyNode>> &nodes)
{
    return std::none_of(nodes.begin(), nodes.end(), [](const auto &node) { return node->isDeleteFlagSet(); });
}

} // namespace Tessellum::AppConfig::utils

/*! The payload of a delete task that keeps its node until it has run. */
Q_DECLARE_METATYPE(std::shared_ptr<Shared::Hierarchy::HierarchyNode>)
