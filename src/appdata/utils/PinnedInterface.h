#pragma once

#include <shared/hierarchy/HierarchyNode.h>

#include <memory>

namespace Tessellum::AppData::utils {

/*! \a part of \a node as a pointer that keeps the node alive; empty where the node is about to die. */
template <class Part, class Node>
std::shared_ptr<Part> PinnedInterface(Node &node, Part *part)
{
    const auto owner = node.weak_from_this().lock();
    return owner ? std::shared_ptr<Part>(owner, part) : nullptr;
}

} // namespace Tessellum::AppData::utils
