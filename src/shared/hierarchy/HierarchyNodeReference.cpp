#include <shared/hierarchy/HierarchyNodeReference.h>

namespace Shared::Hierarchy {

namespace {

// What the target answers, or the empty value of that kind.
template <class Target, class Question>
auto ask(const std::weak_ptr<Target> &target, const Question &question)
{
    const auto alive = target.lock();
    return alive ? question(*alive) : decltype(question(*alive))();
}

} // namespace

HierarchyNodeReference::HierarchyNodeReference(const std::weak_ptr<const HierarchyNodeInstance> &target)
    : HierarchyNodeInstance(QString(), true)
    , readable(target)
{ }

HierarchyNodeReference::HierarchyNodeReference(const std::weak_ptr<HierarchyNodeInstance> &target)
    : HierarchyNodeInstance(QString(), true)
    , writable(target)
    , readable(target)
{ }

HierarchyNodeReference::~HierarchyNodeReference() = default;

QString HierarchyNodeReference::getId() const
{
    return ask(readable, [](const auto &target) { return target.getId(); });
}

quint64 HierarchyNodeReference::getNumberOfChildren() const
{
    return ask(readable, [](const auto &target) { return target.getNumberOfChildren(); });
}

QList<std::shared_ptr<const HierarchyNode>> HierarchyNodeReference::getChildren(const bool &recursive) const
{
    return ask(readable, [&](const auto &target) { return target.getChildren(recursive); });
}

QList<std::shared_ptr<HierarchyNode>> HierarchyNodeReference::getChildren(const bool &recursive)
{
    return ask(writable, [&](auto &target) { return target.getChildren(recursive); });
}

bool HierarchyNodeReference::hasChild(const QString &id) const
{
    return ask(readable, [&](const auto &target) { return target.hasChild(id); });
}

std::shared_ptr<HierarchyNode> HierarchyNodeReference::findChildByRelativePath(const QString &relativePath)
{
    return ask(writable, [&](auto &target) { return target.findChildByRelativePath(relativePath); });
}

std::shared_ptr<const HierarchyNode>
HierarchyNodeReference::findChildByRelativePath(const QString &relativePath) const
{
    return ask(readable, [&](const auto &target) { return target.findChildByRelativePath(relativePath); });
}

bool HierarchyNodeReference::addChild(const std::shared_ptr<HierarchyNode> &child, quint64 *index)
{
    return ask(writable, [&](auto &target) { return target.addChild(child, index); });
}

std::shared_ptr<const HierarchyStringPath> HierarchyNodeReference::getNodePath() const
{
    return ask(readable, [](const auto &target) { return target.getNodePath(); });
}

std::shared_ptr<HierarchyNode> HierarchyNodeReference::getParent()
{
    return ask(writable, [](auto &target) { return target.getParent(); });
}

std::shared_ptr<const HierarchyNode> HierarchyNodeReference::getParent() const
{
    return ask(readable, [](const auto &target) { return target.getParent(); });
}

bool HierarchyNodeReference::isEmpty() const
{
    return readable.expired();
}

bool HierarchyNodeReference::isReferenceDeleteFlagSet() const
{
    const auto target = readable.lock();
    return !target || target->isDeleteFlagSet();
}

bool HierarchyNodeReference::setReferenceDeleteFlag()
{
    return ask(writable, [](auto &target) { return target.setDeleteFlag(); });
}

} // namespace Shared::Hierarchy
