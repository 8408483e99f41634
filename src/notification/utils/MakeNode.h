#pragma once

#include <notification/RepositoryHierarchyThreadProvider.h>
#include <shared/hierarchy/HierarchyNode.h>

#include <memory>
#include <utility>

namespace Tessellum::Notification::utils {

/*! The deleter of nodes: HierarchyNode::Release, counted for the barrier of the event thread. */
struct NodeReleaser
{
    void operator()(Shared::Hierarchy::HierarchyNode *node) const
    {
        Core::RepositoryHierarchyThreadProvider::CountRelease();
        Shared::Hierarchy::HierarchyNode::Release(node);
    }
};

/*!
 * Makes a node of class \a T, the only way in which nodes are made: it lives on the event thread before
 * anybody can see it, and dies there when its last pointer goes.
 */
template <class T, class... Arguments>
std::shared_ptr<T> MakeNode(Arguments &&...arguments)
{
    auto node = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    Core::RepositoryHierarchyThreadProvider::getInstance()->moveToEventThread(node.get());
    return std::shared_ptr<T>(node.release(), NodeReleaser());
}

} // namespace Tessellum::Notification::utils
