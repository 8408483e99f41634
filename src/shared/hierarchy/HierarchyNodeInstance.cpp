#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/hierarchy/utils/HierarchyChildTable.h>

#include <QThread>

#include <iterator>
#include <vector>

using Shared::Synchronization::ScopedLock;

namespace Shared::Hierarchy {

namespace {

using NodeVector = std::vector<std::shared_ptr<HierarchyNode>>;

// Lets go of nodes one after the other: a chain of nodes that let go of each other would need a stack as deep
// as it.
void releaseNodes(NodeVector nodes)
{
    thread_local NodeVector *waiting = nullptr;
    if (waiting) {
        waiting->insert(waiting->end(), std::make_move_iterator(nodes.begin()),
                        std::make_move_iterator(nodes.end()));
        return;
    }
    waiting = &nodes;
    while (!nodes.empty()) {
        const std::shared_ptr<HierarchyNode> last = std::move(nodes.back());
        nodes.pop_back();
    }
    waiting = nullptr;
}

template <class Node>
QList<std::shared_ptr<Node>> withDescendants(QList<std::shared_ptr<Node>> nodes)
{
    QList<std::shared_ptr<Node>> below;
    for (const std::shared_ptr<Node> &node : qAsConst(nodes))
        below.append(node->getChildren(true));
    nodes.append(below);
    return nodes;
}

QStringView firstElement(const QString &path)
{
    static const QChar separator = HierarchyNode::GetHierarchyNodePathSeparator().at(0);
    const int end = path.indexOf(separator);
    return end < 0 ? QStringView(path) : QStringView(path).left(end);
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
        releaseNodes(childNodes->takeAll());
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
    return recursive ? withDescendants(std::move(nodes)) : nodes;
}

QList<std::shared_ptr<HierarchyNode>> HierarchyNodeInstance::getChildren(const bool &recursive)
{
    QList<std::shared_ptr<HierarchyNode>> nodes = children();
    return recursive ? withDescendants(std::move(nodes)) : nodes;
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

std::shared_ptr<HierarchyNode> HierarchyNodeInstance::findChildByRelativePath(const QString &relativePath)
{
    if (relativePath.isEmpty())
        return self();
    const QStringView first = firstElement(relativePath);
    const std::shared_ptr<HierarchyNode> node = child(first);
    if (!node || first.size() == relativePath.size())
        return node;
    return node->findChildByRelativePath(relativePath.mid(int(first.size()) + 1));
}

std::shared_ptr<const HierarchyNode>
HierarchyNodeInstance::findChildByRelativePath(const QString &relativePath) const
{
    if (relativePath.isEmpty())
        return self();
    const QStringView first = firstElement(relativePath);
    const std::shared_ptr<const HierarchyNode> node = child(first);
    if (!node || first.size() == relativePath.size())
        return node;
    return node->findChildByRelativePath(relativePath.mid(int(first.size()) + 1));
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

// One connection serves all children, where a connection each would cost more than the rest of a leaf. A
// child on another thread hears of the change there.
void HierarchyNodeInstance::forwardPathChange()
{
    const QList<std::shared_ptr<HierarchyNode>> nodes = children();
    for (const auto &node : nodes) {
        if (node->thread() == QThread::currentThread())
            node->onParentPathChanged();
        else
            QMetaObject::invokeMethod(node.get(), &HierarchyNode::onParentPathChanged, Qt::QueuedConnection);
    }
}

} // namespace Shared::Hierarchy
