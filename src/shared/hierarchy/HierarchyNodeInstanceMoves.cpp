// How a node changes its parent: setParent and addChild call each other, and what they share.
#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/hierarchy/utils/HierarchyChildTable.h>
#include <shared/logging/FrameworkLog.h>

#include <QScopedValueRollback>
#include <QThread>

#include <algorithm>
#include <mutex>
#include <vector>

using Shared::Synchronization::ScopedLock;

namespace Shared::Hierarchy {

namespace {

// The node whose setParent asks its new parent for the entry, on this thread: tells that inner call from one
// that somebody makes with a node that is there already.
thread_local const HierarchyNodeInstance *nodeAskingForEntry = nullptr;

// The node that this thread adds where there may be one of that id already.
thread_local const HierarchyNode *nodeAddedIfAbsent = nullptr;

// The nodes that are still to hear of the move that this thread is telling of, the next one last: nodes that
// pass it on to each other would need a stack as deep as the tree.
using Listeners = std::vector<std::shared_ptr<HierarchyNode>>;
thread_local Listeners *listenersToMove = nullptr;

void tellOfMove(const std::shared_ptr<HierarchyNode> &node)
{
    if (node->thread() == QThread::currentThread())
        node->onParentPathChanged();
    else
        QMetaObject::invokeMethod(node.get(), &HierarchyNode::onParentPathChanged, Qt::QueuedConnection);
}

// Held while the link of a node to its parent is tested and changed: two moves that would hang nodes below
// each other are seen one after the other. A leaf of the order of locks but for the locks of paths.
std::mutex &shapeMutex()
{
    static std::mutex mutex;
    return mutex;
}

// Held by the one thread that holds the locks of two nodes, a parent's and then a child's: while nodes move,
// the next thread might take the same two the other way round.
std::mutex &pairMutex()
{
    static std::mutex mutex;
    return mutex;
}

} // namespace

bool HierarchyNodeInstance::addChild(const std::shared_ptr<HierarchyNode> &node, quint64 *index)
{
    const auto instance = dynamic_cast<HierarchyNodeInstance *>(node.get());
    if (!instance) {
        Logging::FrameworkLog().critical()
            << "HierarchyNodeInstance::addChild() called with incompatible hierarchy node implementation";
        return false;
    }
    if (nodeAskingForEntry == instance) {
        nodeAskingForEntry = nullptr;
        return enterAndNotify(node, *instance);
    }
    if (hasChild(node, nullptr)) {
        warnAboutExisting(*instance);
        return false;
    }
    const std::shared_ptr<HierarchyNode> me = self();
    bool added = me && node->setParent(me, false);
    if (added && !hasChild(node, nullptr))
        added = enterAndNotify(node, *instance);
    if (index) {
        const ScopedLock lock(this);
        *index = childNodes ? childNodes->position(instance->nodeId) : ~quint64(0);
    }
    return added;
}

bool HierarchyNodeInstance::AddIfAbsent(HierarchyNode &parent,
                                        const std::shared_ptr<HierarchyNodeInstance> &node)
{
    const QScopedValueRollback<const HierarchyNode *> quiet(nodeAddedIfAbsent, node.get());
    return parent.addChild(node);
}

std::shared_ptr<const HierarchyStringPath> HierarchyNodeInstance::getNodePath() const
{
    while (!tryMakePath()) {
        // Something above has no path yet: make them from the top, one by one.
        std::vector<InstancePointer> above;
        for (auto node = instanceAbove(); node; node = node->instanceAbove())
            above.push_back(node);
        std::for_each(above.crbegin(), above.crend(), [](const auto &node) { node->tryMakePath(); });
    }
    const ScopedLock lock(this);
    return path.get();
}

bool HierarchyNodeInstance::setParent(const std::weak_ptr<HierarchyNode> &newParent, const bool &silent)
{
    if (nodeId.isEmpty())
        return false;
    // The old parent may hold the last pointer to this node.
    const std::shared_ptr<HierarchyNode> keepAlive = weak_from_this().lock();
    InstancePointer target = std::dynamic_pointer_cast<HierarchyNodeInstance>(newParent.lock());
    bool taken = true;
    if (target && target->standsForTarget) {
        // Children of a link are those of its target: that is the parent, if the link lets it be changed.
        target = std::dynamic_pointer_cast<HierarchyNodeInstance>(target->findChildByRelativePath(QString()));
        taken = target != nullptr;
    }

    InstancePointer oldParent;
    switch (relink(target, oldParent)) {
    case Relinked::Refused:
        return false;
    case Relinked::Unchanged:
        return taken;
    case Relinked::Moved:
        break;
    }
    if (oldParent)
        leave(*oldParent);
    if (target && !askForEntry(*target, keepAlive)) {
        unlink(target);
        taken = false;
    }
    if (!silent) {
        // A move that a slot makes is told to the end before it returns, whatever is being told around it.
        const QScopedValueRollback<Listeners *> itsOwn(listenersToMove, nullptr);
        Q_EMIT pathChanged();
    }
    return taken;
}

bool HierarchyNodeInstance::setDeleteFlagIfEmpty()
{
    // Released after the locks, as is what leaves the table: the parent may hold the last pointer to this.
    const std::shared_ptr<HierarchyNode> keepAlive = weak_from_this().lock();
    // Nobody finds it with the flag set: the flag and the table change under the lock of the parent.
    InstancePointer above;
    const std::lock_guard<std::mutex> pair(pairMutex());
    for (;;) {
        above = instanceAbove();
        const ScopedLock parentLock(above.get());
        const ScopedLock lock(this);
        if (isDeleteFlagSet() || (childNodes && childNodes->size() > 0))
            return isDeleteFlagSet();
        {
            const std::lock_guard<std::mutex> shape(shapeMutex());
            if (above ? !above->isParentOf(*this) : !parent.expired())
                continue; // moved meanwhile
            deleteFlag.store(true, std::memory_order_release);
            point(nullptr);
        }
        if (above)
            leave(*above);
        return true;
    }
}

// One connection serves all children, where a connection each would cost more than the rest of a leaf. A
// child on another thread hears of the change there.
void HierarchyNodeInstance::forwardPathChange()
{
    const QList<std::shared_ptr<HierarchyNode>> nodes = children();
    if (listenersToMove) {
        listenersToMove->insert(listenersToMove->end(), nodes.crbegin(), nodes.crend());
        return;
    }
    Listeners listeners(nodes.crbegin(), nodes.crend());
    const QScopedValueRollback<Listeners *> telling(listenersToMove, &listeners);
    while (!listeners.empty()) {
        const std::shared_ptr<HierarchyNode> next = std::move(listeners.back());
        listeners.pop_back();
        tellOfMove(next);
    }
}

bool HierarchyNodeInstance::askForEntry(HierarchyNodeInstance &target,
                                        const std::shared_ptr<HierarchyNode> &me) const
{
    const QScopedValueRollback<const HierarchyNodeInstance *> asking(nodeAskingForEntry, this);
    return target.addChild(me, nullptr);
}

// Expects the lock of \a node or the mutex of the shape. Compares without an owner of the other parent: the
// last one would destroy it under the lock.
bool HierarchyNodeInstance::isParentOf(const HierarchyNodeInstance &node) const
{
    const std::weak_ptr<const HierarchyNode> me = weak_from_this();
    return !me.owner_before(node.parent) && !node.parent.owner_before(me);
}

// Points this node, and its path if it is made, to another parent.
HierarchyNodeInstance::Relinked HierarchyNodeInstance::relink(const InstancePointer &target,
                                                              InstancePointer &oldParent)
{
    // Released after the locks: the last pointer to a node runs the destructors of a subtree.
    Ancestors ancestors;
    for (;;) {
        {
            const ScopedLock lock(this);
            const std::lock_guard<std::mutex> shape(shapeMutex());
            oldParent = std::static_pointer_cast<HierarchyNodeInstance>(parent.lock());
            if (oldParent == target)
                return Relinked::Unchanged;
            if (target && isOrLiesAbove(*target, ancestors))
                return Relinked::Refused;
            if (!path || !target || target->path) {
                point(target);
                return Relinked::Moved;
            }
        }
        target->getNodePath();
    }
}

// Expects the mutex of the shape.
bool HierarchyNodeInstance::isOrLiesAbove(const HierarchyNodeInstance &node, Ancestors &ancestors) const
{
    if (!wasParent)
        return &node == this;
    for (auto current = &node; current;
         current = static_cast<HierarchyNodeInstance *>(ancestors.back().get())) {
        if (current == this)
            return true;
        ancestors.append(current->parent.lock());
    }
    return false;
}

// Expects the lock of this node and the mutex of the shape; a path above a path that is made must be made.
void HierarchyNodeInstance::point(const InstancePointer &target)
{
    parent = target;
    if (target)
        target->wasParent = true;
    if (path)
        path->setPathParent(target ? target->path.get() : nullptr);
}

// Takes the link to a parent back that did not take this node, unless somebody else has moved it meanwhile.
void HierarchyNodeInstance::unlink(const InstancePointer &from)
{
    {
        const ScopedLock lock(this);
        const std::lock_guard<std::mutex> shape(shapeMutex());
        if (from->isParentOf(*this))
            point(nullptr);
    }
    leave(*from);
}

// Takes this very node, not another of its id, off the children of \a oldParent, unless another thread has
// brought it back there meanwhile.
void HierarchyNodeInstance::leave(HierarchyNodeInstance &oldParent) const
{
    std::shared_ptr<HierarchyNode> taken; // released after the locks
    const ScopedLock lock(&oldParent);
    const std::lock_guard<std::mutex> shape(shapeMutex());
    const auto found = oldParent.childNodes ? oldParent.childNodes->find(nodeId) : nullptr;
    if (found && found->get() == this && !oldParent.isParentOf(*this))
        taken = oldParent.childNodes->take(nodeId);
}

// Of two nodes with the same id one gets in. A node that another thread has moved on before the test does not
// get in, and one that is moved on after it leaves behind this lock. The lock of the node itself is not
// taken: where two have been moved below each other, one thread would hold the one and the next the other.
HierarchyNodeInstance::Entered HierarchyNodeInstance::enter(const std::shared_ptr<HierarchyNode> &node,
                                                            HierarchyNodeInstance &instance)
{
    const ScopedLock lock(this);
    {
        const std::lock_guard<std::mutex> shape(shapeMutex());
        if (!isParentOf(instance))
            return Entered::Elsewhere;
    }
    if (!childNodes) {
        childNodes = std::make_unique<utils::HierarchyChildTable>();
        connect(this, &HierarchyNode::pathChanged, this, &HierarchyNodeInstance::forwardPathChange,
                Qt::DirectConnection);
    }
    if (const auto found = childNodes->find(instance.nodeId))
        return *found == node ? Entered::Before : Entered::Clash;
    childNodes->append(instance.nodeId, node);
    childEntered(node);
    return Entered::Now;
}

void HierarchyNodeInstance::childEntered(const std::shared_ptr<HierarchyNode> & /*child*/) { }

void HierarchyNodeInstance::announceChild(const QString &childId)
{
    Q_EMIT notifyChildAdded(childId);
}

bool HierarchyNodeInstance::enterAndNotify(const std::shared_ptr<HierarchyNode> &node,
                                           HierarchyNodeInstance &instance)
{
    switch (enter(node, instance)) {
    case Entered::Now:
        announceChild(instance.nodeId);
        return true;
    case Entered::Clash:
        warnAboutExisting(instance);
        return false;
    case Entered::Before:
    case Entered::Elsewhere:
        break;
    }
    return true;
}

void HierarchyNodeInstance::warnAboutExisting(const HierarchyNode &node) const
{
    if (&node == nodeAddedIfAbsent)
        return;
    Logging::FrameworkLog().warning() << "HierarchyNodeInstance::addChild() Trying to add existing child: '"
                                      << node.getId() << "' to '" << nodeId << "'";
}

// False where the parent has no path yet.
bool HierarchyNodeInstance::tryMakePath() const
{
    InstancePointer above; // released after the locks
    const ScopedLock lock(this);
    if (path)
        return true;
    const std::lock_guard<std::mutex> shape(shapeMutex());
    above = std::static_pointer_cast<HierarchyNodeInstance>(parent.lock());
    if (above && !above->path)
        return false;
    path = HierarchyNodePathSynchronizer(std::make_shared<HierarchyStringPath>(
        above ? above->path.get() : nullptr, GetHierarchyNodePathSeparator(), nodeId));
    return true;
}

} // namespace Shared::Hierarchy
