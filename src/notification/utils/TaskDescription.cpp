#include "TaskDescription.h"

#include <shared/hierarchy/HierarchyNode.h>
#include <shared/hierarchy/HierarchyStringPath.h>

namespace Tessellum::Notification::utils {

QString PathOrNull(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node)
{
    const auto target = node.lock();
    return target ? target->getNodePath()->getFullPath() : QStringLiteral("<nullptr>");
}

QString TaskDescription::text() const
{
    QString text = QLatin1String(prefix) + path;
    if (nodePrefix)
        text += QLatin1String(nodePrefix) + PathOrNull(node);
    if (valuePrefix)
        text += QLatin1String(valuePrefix) + value.toString();
    return text;
}

} // namespace Tessellum::Notification::utils
