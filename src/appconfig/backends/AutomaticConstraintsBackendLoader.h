#pragma once

#include <notification/Observer.h>
#include <shared/hierarchy/HierarchyNode.h>

namespace Tessellum::AppConfig::Backends {

/*!
 * Starts the creation of a constraints backend named \a name beneath \a parent that reads \a filePath, and
 * does not wait for it. Empty if there is no such file or nothing could be started. Any thread may call.
 */
std::shared_ptr<Notification::CreateObserver>
AutomaticConstraintsBackendLoader(const QString &filePath, const QString &name,
                                  const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent);

} // namespace Tessellum::AppConfig::Backends
