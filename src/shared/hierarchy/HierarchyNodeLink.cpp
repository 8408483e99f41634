#include <shared/hierarchy/HierarchyNodeLink.h>

namespace Shared::Hierarchy {

HierarchyNodeLink::HierarchyNodeLink(const std::weak_ptr<HierarchyNode> &target, const QString &id,
                                     const bool &isReadOnlyLink)
    : HierarchyNodeInstance(id, true)
    , link(target)
    , readOnly(isReadOnlyLink)
{ }

HierarchyNodeLink::~HierarchyNodeLink() = default;

QList<std::shared_ptr<const HierarchyNode>> HierarchyNodeLink::getChildren(const bool &recursive) const
{
    const auto target = getLink();
    return target ? target->getChildren(recursive) : QList<std::shared_ptr<const HierarchyNode>>();
}

std::shared_ptr<HierarchyNode> HierarchyNodeLink::findChildByRelativePath(const QString &relativePath)
{
    const auto target = getLink();
    return target ? target->findChildByRelativePath(relativePath) : nullptr;
}

std::shared_ptr<const HierarchyNode>
HierarchyNodeLink::findChildByRelativePath(const QString &relativePath) const
{
    const auto target = getLink();
    return target ? target->findChildByRelativePath(relativePath) : nullptr;
}

bool HierarchyNodeLink::addChild(const std::shared_ptr<HierarchyNode> &child, quint64 *index)
{
    const auto target = getLink();
    return target && target->addChild(child, index);
}

bool HierarchyNodeLink::isLinked() const
{
    return !link.expired();
}

bool HierarchyNodeLink::isReadOnly() const
{
    return readOnly;
}

std::shared_ptr<HierarchyNode> HierarchyNodeLink::getLink()
{
    return readOnly ? nullptr : link.lock();
}

std::shared_ptr<const HierarchyNode> HierarchyNodeLink::getLink() const
{
    return link.lock();
}

} // namespace Shared::Hierarchy
