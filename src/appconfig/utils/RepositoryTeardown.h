#pragma once

#include <shared/hierarchy/HierarchyNode.h>

namespace Tessellum::AppConfig::utils {

/*!
 * Takes the backends beneath \a root off the tree for good, so that the next run may make them again. \a
 * removed keeps the nodes: the caller lets go of them once it holds no lock, since their end may run code of
 * others.
 */
void RemoveBackends(Shared::Hierarchy::HierarchyNode &root,
                    QList<std::shared_ptr<Shared::Hierarchy::HierarchyNode>> &removed);

/*!
 * Moves the children of \a root to \a keeper with their subtrees and without a signal of the keeper. A child
 * whose name is taken there goes off the tree and into \a removed.
 */
void MoveChildren(Shared::Hierarchy::HierarchyNode &root, Shared::Hierarchy::HierarchyNode &keeper,
                  QList<std::shared_ptr<Shared::Hierarchy::HierarchyNode>> &removed);

} // namespace Tessellum::AppConfig::utils
