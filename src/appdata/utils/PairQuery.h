#pragma once

#include <shared/hierarchy/HierarchyNode.h>

#include <QStringList>

namespace Tessellum::AppData::utils {

/*! The paths of the attributes that \a pattern matches, as HierarchyNode::queryChildren() does; only
 * attributes are looked at, so that the elements of all entries cost nothing. */
QStringList FindPairPaths(Shared::Hierarchy::HierarchyNode &root, const QString &pattern);

} // namespace Tessellum::AppData::utils
