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
        Shared::Hierarchy::HierarchyNode::Release(node);
        // Behind it: a barrier that counts this one must find its deletion in the event thread's queue.
        Core::RepositoryHierarchyThreadProvider::CountRelease();
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

/*! The deleter of the other objects that live on the event thread: they die there, as nodes do. */
struct TESSELLUM_EXPORT EventThreadReleaser
{
    void operator()(QObject *object) const;
};

/*! Makes an object of class \a T, no node, that lives on the event thread and dies there. */
template <class T, class... Arguments>
std::shared_ptr<T> MakeEventThreadObject(Arguments &&...arguments)
{
    auto object = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    Core::RepositoryHierarchyThreadProvider::getInstance()->moveToEventThread(object.get());
    return std::shared_ptr<T>(object.release(), EventThreadReleaser());
}

} // namespace Tessellum::Notification::utils
