#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/hierarchy/utils/Descendants.h>
#include <shared/hierarchy/utils/HierarchyChildTable.h>
#include <shared/hierarchy/utils/ReleaseInTurn.h>

using Shared::Synchronization::ScopedLock;

namespace Shared::Hierarchy {

namespace {

QStringView firstElement(QStringView path)
{
    static const QChar separator = HierarchyNode::GetHierarchyNodePathSeparator().at(0);
    const auto end = path.indexOf(separator);
    return end < 0 ? path : path.left(end);
}

} // namespace

HierarchyNodeInstance::HierarchyNodeInstance()
    : HierarchyNodeInstance(QString())
{ }

HierarchyNodeInstance::HierarchyNodeInstance(const QString &id)
    : HierarchyNodeInstance(id, false)
{ }

HierarchyNodeInstance::HierarchyNodeInstance(const QString &id, bool isForTarget)
    : nodeId(id)
    , standsForTarget(isForTarget)
{ }

HierarchyNodeInstance::~HierarchyNodeInstance()
{
    if (childNodes)
        utils::releaseInTurn(childNodes->takeAll());
}

QString HierarchyNodeInstance::getId() const
{
    return nodeId;
}

bool HierarchyNodeInstance::isDeleteFlagSet() const
{
    return deleteFlag.load(std::memory_order_acquire);
}

bool HierarchyNodeInstance::setDeleteFlag()
{
    if (isDeleteFlagSet())
        return true;
    // The parent may hold the last pointer to this node.
    const std::shared_ptr<HierarchyNode> keepAlive = weak_from_this().lock();
    setParent(std::weak_ptr<HierarchyNode>(), true);
    deleteFlag.store(true, std::memory_order_release);
    // Another thread may have moved the node in between.
    if (instanceAbove())
        setParent(std::weak_ptr<HierarchyNode>(), true);
    return isDeleteFlagSet();
}

quint64 HierarchyNodeInstance::getNumberOfChildren() const
{
    const ScopedLock lock(this);
    return childNodes ? childNodes->size() : 0;
}

QList<std::shared_ptr<const HierarchyNode>> HierarchyNodeInstance::getChildren(const bool &recursive) const
{
    QList<std::shared_ptr<const HierarchyNode>> nodes;
    {
        const ScopedLock lock(this);
        if (childNodes) {
            nodes.reserve(int(childNodes->size()));
            childNodes->forEach([&nodes](const std::shared_ptr<HierarchyNode> &node) { nodes.append(node); });
        }
    }
    return recursive ? utils::Descendants<const HierarchyNode>::of(std::move(nodes)) : nodes;
}

QList<std::shared_ptr<HierarchyNode>> HierarchyNodeInstance::getChildren(const bool &recursive)
{
    QList<std::shared_ptr<HierarchyNode>> nodes = children();
    return recursive ? utils::Descendants<HierarchyNode>::of(std::move(nodes)) : nodes;
}

QList<std::shared_ptr<HierarchyNode>> HierarchyNodeInstance::children() const
{
    QList<std::shared_ptr<HierarchyNode>> nodes;
    const ScopedLock lock(this);
    if (childNodes) {
        nodes.reserve(int(childNodes->size()));
        childNodes->forEach([&nodes](const std::shared_ptr<HierarchyNode> &node) { nodes.append(node); });
    }
    return nodes;
}

QStringList HierarchyNodeInstance::getChildIds() const
{
    QStringList ids;
    const ScopedLock lock(this);
    if (childNodes) {
        ids.reserve(int(childNodes->size()));
        childNodes->forEachId([&ids](const QString &id) { ids.append(id); });
    }
    return ids;
}

bool HierarchyNodeInstance::hasChild(const std::shared_ptr<const HierarchyNode> &node, quint64 *index) const
{
    if (!node)
        return false;
    const QString childId = node->getId();
    const ScopedLock lock(this);
    if (!isValidId(childId))
        return false;
    if (index)
        *index = childNodes->position(childId);
    return true;
}

bool HierarchyNodeInstance::hasChild(const QString &childId) const
{
    return getChildById(childId) != nullptr;
}

// The children of a node are instances: nothing else can enter.
template <class Instance, class Node>
std::shared_ptr<Node> HierarchyNodeInstance::findBelow(Instance *instance, QStringView path)
{
    std::shared_ptr<Node> owner;
    for (;;) {
        const QStringView first = firstElement(path);
        std::shared_ptr<Node> node = instance->child(first);
        if (!node || first.size() == path.size())
            return node;
        path = path.mid(first.size() + 1);
        owner = std::move(node);
        instance = static_cast<Instance *>(owner.get());
        if (instance->standsForTarget) {
            owner = owner->findChildByRelativePath(QString());
            instance = dynamic_cast<Instance *>(owner.get());
            if (owner && !instance)
                return owner->findChildByRelativePath(path.toString());
        }
        if (!instance || path.isEmpty())
            return owner;
    }
}

std::shared_ptr<HierarchyNode> HierarchyNodeInstance::findChildByRelativePath(const QString &relativePath)
{
    return relativePath.isEmpty() ? self()
                                  : findBelow<HierarchyNodeInstance, HierarchyNode>(this, relativePath);
}

std::shared_ptr<const HierarchyNode>
HierarchyNodeInstance::findChildByRelativePath(const QString &relativePath) const
{
    return relativePath.isEmpty()
        ? self()
        : findBelow<const HierarchyNodeInstance, const HierarchyNode>(this, relativePath);
}

std::shared_ptr<HierarchyNode> HierarchyNodeInstance::getParent()
{
    const ScopedLock lock(this);
    return parent.lock();
}

std::shared_ptr<const HierarchyNode> HierarchyNodeInstance::getParent() const
{
    const ScopedLock lock(this);
    return parent.lock();
}

void HierarchyNodeInstance::onParentPathChanged()
{
    if (isDeleteFlagSet())
        return;
    {
        const ScopedLock lock(this);
        if (path)
            path->setPathParent(path->getParent());
    }
    Q_EMIT pathChanged();
}

std::shared_ptr<HierarchyNode> HierarchyNodeInstance::getChildById(const QString &childId)
{
    return child(childId);
}

std::shared_ptr<const HierarchyNode> HierarchyNodeInstance::getChildById(const QString &childId) const
{
    return child(childId);
}

std::shared_ptr<HierarchyNode> HierarchyNodeInstance::getChildByIndex(const quint64 &index)
{
    const ScopedLock lock(this);
    const auto found = childNodes ? childNodes->at(index) : nullptr;
    return found ? *found : nullptr;
}

std::shared_ptr<const HierarchyNode> HierarchyNodeInstance::getChildByIndex(const quint64 &index) const
{
    const ScopedLock lock(this);
    const auto found = childNodes ? childNodes->at(index) : nullptr;
    return found ? *found : nullptr;
}

std::shared_ptr<HierarchyNode> HierarchyNodeInstance::child(QStringView childId) const
{
    const ScopedLock lock(this);
    const auto found = childNodes ? childNodes->find(childId) : nullptr;
    return found ? *found : nullptr;
}

HierarchyNodeInstance::InstancePointer HierarchyNodeInstance::instanceAbove() const
{
    const ScopedLock lock(this);
    return std::static_pointer_cast<HierarchyNodeInstance>(parent.lock());
}

// Expects the lock of this node.
bool HierarchyNodeInstance::isValidId(const QString &childId) const
{
    return childNodes && childNodes->find(childId);
}

} // namespace Shared::Hierarchy
