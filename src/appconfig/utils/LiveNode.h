#pragma once

#include <shared/hierarchy/HierarchyNode.h>

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

} // namespace Tessellum::AppConfig::utils

/*! The payload of a delete task that keeps its node until it has run. */
Q_DECLARE_METATYPE(std::shared_ptr<Shared::Hierarchy::HierarchyNode>)
