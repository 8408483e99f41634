#pragma once

#include <appconfig/HierarchyListPattern.h>

#include <memory>

/*! The names of storages. They change under the pairMutex() of the RepositoryProvider alone. */
namespace Tessellum::AppData::Storages::utils {

/*! The list that leads from a name to the node; null while the configuration is stopped. */
std::shared_ptr<Core::HierarchyListPattern> NameList();
/*! Whether a storage may be linked beneath \a parent under \a name. What only leads to the pairs of a
 * classification of that name does not stand in its way. */
bool IsNameFree(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent, const QString &name);

} // namespace Tessellum::AppData::Storages::utils
