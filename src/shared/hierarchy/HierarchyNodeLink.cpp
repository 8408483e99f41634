#include <shared/hierarchy/HierarchyNodeLink.h>

namespace Shared::Hierarchy {

/*! What lies behind all links on the way. One is asked after the other, not each by the one before it: a
 * chain of links may be longer than the stack. It has an end, since a link is younger than its target. */
template <class Link>
auto HierarchyNodeLink::behindAll(Link &first)
{
    auto target = first.getLink();
    while (const auto next = dynamic_cast<Link *>(target.get()))
        target = next->getLink();
    return target;
}

HierarchyNodeLink::HierarchyNodeLink(const std::weak_ptr<HierarchyNode> &target, const QString &id,
                                     const bool &isReadOnlyLink)
    : HierarchyNodeInstance(id, true)
    , link(target)
    , readOnly(isReadOnlyLink)
{ }

HierarchyNodeLink::~HierarchyNodeLink() = default;

QList<std::shared_ptr<const HierarchyNode>> HierarchyNodeLink::getChildren(const bool &recursive) const
{
    const auto target = behindAll(*this);
    return target ? target->getChildren(recursive) : QList<std::shared_ptr<const HierarchyNode>>();
}

std::shared_ptr<HierarchyNode> HierarchyNodeLink::findChildByRelativePath(const QString &relativePath)
{
    const auto target = behindAll(*this);
    return target ? target->findChildByRelativePath(relativePath) : nullptr;
}

std::shared_ptr<const HierarchyNode>
HierarchyNodeLink::findChildByRelativePath(const QString &relativePath) const
{
    const auto target = behindAll(*this);
    return target ? target->findChildByRelativePath(relativePath) : nullptr;
}

bool HierarchyNodeLink::addChild(const std::shared_ptr<HierarchyNode> &child, quint64 *index)
{
    const auto target = behindAll(*this);
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
