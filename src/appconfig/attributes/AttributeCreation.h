#pragma once

#include <appconfig/attributes/Attribute.h>

namespace Tessellum::AppConfig::Attributes {

/*!
 * Creates the attribute \a data beneath \a parent on the caller's thread, without a task and without a
 * notification: what stands at the path is overwritten, what is missing on the way is made.
 * With \a keepExisting an attribute that has come to exist is left as it is (still true).
 * False for an empty name, or if the place is taken by something that is no attribute.
 */
bool CreateAttributeInHierarchy(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent,
                                const AttributeCreateData &data, bool keepExisting = false);

/*! The same for each element of \a list in its order; the number of those that were created. */
int CreateAttributesInHierarchy(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent,
                                const AttributesCreateData &list);

} // namespace Tessellum::AppConfig::Attributes
