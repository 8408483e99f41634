#include <appconfig/backends/Backend.h>
#include <appconfig/utils/RepositoryTeardown.h>

#include <QSignalBlocker>

namespace Tessellum::AppConfig::utils {

using Backends::Backend;
using Shared::Hierarchy::HierarchyNode;

void RemoveBackends(HierarchyNode &root, QList<std::shared_ptr<HierarchyNode>> &removed)
{
    for (const auto &node : root.getChildren(true)) {
        if (const auto backend = std::dynamic_pointer_cast<Backend>(node)) {
            backend->setDeleteFlag();
            removed.append(node);
        }
    }
}

void MoveChildren(HierarchyNode &root, HierarchyNode &keeper, QList<std::shared_ptr<HierarchyNode>> &removed)
{
    const QSignalBlocker silence(&keeper);
    for (const auto &child : root.getChildren(false)) {
        if (!keeper.hasChild(child->getId()) && keeper.addChild(child))
            continue;
        child->setDeleteFlag();
        removed.append(child);
    }
}

} // namespace Tessellum::AppConfig::utils
