#pragma once

#include <shared/hierarchy/HierarchyNode.h>
#include <shared/hierarchy/HierarchyNodePathSynchronizer.h>

#include <QVarLengthArray>

#include <atomic>
#include <memory>

namespace Shared::Hierarchy {

namespace utils {
class HierarchyChildTable;
} // namespace utils

/*!
 * A node that keeps its children and its path.
 *
 * Locks, in this order: the lock of a node, which guards parent, path and childNodes (either of two that move
 * may come to lie above the other: one thread at a time takes two), the mutex of the shape, those of paths.
 * Parent and path are written under the mutex of the shape as well, so that whoever holds that sees a tree
 * that does not move; it is held for the few steps of a move only. No lock is held while a signal is emitted.
 *
 * No walk over the tree, down or up, needs a stack as deep as it. A search by path goes through a node that
 * stands for a target and asks no other node it passes on the way.
 *
 * A path and a table of children are made when somebody asks for them: most nodes are leaves that nobody
 * asks. The table keeps the children by id and in their order at once, so that no removal has to scan the
 * order. The delete flag is one atomic: whoever asks for it needs no lock, and so cannot meet another who
 * holds one.
 */
class TESSELLUM_EXPORT HierarchyNodeInstance : public HierarchyNode
{
    Q_OBJECT

public:
    HierarchyNodeInstance();
    /*! \a id stays for good; a node with an empty one is a root and cannot get a parent. */
    explicit HierarchyNodeInstance(const QString &id);
    ~HierarchyNodeInstance() override;

    QString getId() const override;
    bool isDeleteFlagSet() const override;
    bool setDeleteFlag() override;
    /*! As setDeleteFlag(), but only if the node has no child: test, flag and leaving the parent are one step,
     * so that who adds a child and finds the flag not set after that knows that the node stays. Returns
     * whether the flag is set. */
    bool setDeleteFlagIfEmpty();
    quint64 getNumberOfChildren() const override;
    QList<std::shared_ptr<const HierarchyNode>> getChildren(const bool &recursive) const override;
    QList<std::shared_ptr<HierarchyNode>> getChildren(const bool &recursive) override;
    bool hasChild(const std::shared_ptr<const HierarchyNode> &node, quint64 *index = nullptr) const override;
    bool hasChild(const QString &id) const override;
    std::shared_ptr<HierarchyNode> findChildByRelativePath(const QString &path) override;
    std::shared_ptr<const HierarchyNode> findChildByRelativePath(const QString &path) const override;
    bool addChild(const std::shared_ptr<HierarchyNode> &node, quint64 *index = nullptr) override;
    /*! Adds \a node to \a parent as addChild() does, but says nothing where a child with that id is there:
     * for those who made it since they had found none, and may have been overtaken. */
    static bool AddIfAbsent(HierarchyNode &parent, const std::shared_ptr<HierarchyNodeInstance> &node);
    std::shared_ptr<const HierarchyStringPath> getNodePath() const override;
    std::shared_ptr<HierarchyNode> getParent() override;
    std::shared_ptr<const HierarchyNode> getParent() const override;

public Q_SLOTS:
    void onParentPathChanged() override;

public:
    bool setParent(const std::weak_ptr<HierarchyNode> &newParent, const bool &silent = false) override;
    std::shared_ptr<HierarchyNode> getChildById(const QString &id) override;
    std::shared_ptr<const HierarchyNode> getChildById(const QString &id) const override;

    /*! The child with \a index children before it, or an empty pointer. Linear after removals. */
    std::shared_ptr<HierarchyNode> getChildByIndex(const quint64 &index);
    std::shared_ptr<const HierarchyNode> getChildByIndex(const quint64 &index) const;
    /*! The children, in no promised order. */
    QList<std::shared_ptr<HierarchyNode>> children() const;
    /** The ids of the children in the order in which they came. */
    QStringList getChildIds() const;

Q_SIGNALS:
    /*! A child has been entered. Emitted by the thread that added it, with no lock held. */
    void notifyChildAdded(const QString &id);

protected:
    /*! For a node that \a isForTarget: a node that is given it as parent goes below its target, which it
     * hands out as the node at an empty path. */
    HierarchyNodeInstance(const QString &id, bool isForTarget);

    /*! \a child has been entered. Called with the lock of this node held, so that what a derived class keeps
     * of its children goes with them; it must call nobody else. */
    virtual void childEntered(const std::shared_ptr<HierarchyNode> &child);
    /*! Emits notifyChildAdded(). */
    virtual void announceChild(const QString &childId);

private:
    using InstancePointer = std::shared_ptr<HierarchyNodeInstance>;
    using Ancestors = QVarLengthArray<std::shared_ptr<HierarchyNode>, 8>;
    enum class Relinked { Moved, Unchanged, Refused };
    enum class Entered { Now, Before, Clash, Elsewhere };

    template <class Instance, class Node>
    static std::shared_ptr<Node> findBelow(Instance *instance, QStringView path);
    std::shared_ptr<HierarchyNode> child(QStringView childId) const;
    InstancePointer instanceAbove() const;
    bool isValidId(const QString &childId) const;
    bool isParentOf(const HierarchyNodeInstance &node) const;
    bool isOrLiesAbove(const HierarchyNodeInstance &node, Ancestors &ancestors) const;
    Relinked relink(const InstancePointer &target, InstancePointer &oldParent);
    void point(const InstancePointer &target);
    void unlink(const InstancePointer &from);
    void leave(HierarchyNodeInstance &oldParent) const;
    bool askForEntry(HierarchyNodeInstance &target, const std::shared_ptr<HierarchyNode> &me) const;
    Entered enter(const std::shared_ptr<HierarchyNode> &node, HierarchyNodeInstance &instance);
    bool enterAndNotify(const std::shared_ptr<HierarchyNode> &node, HierarchyNodeInstance &instance);
    void warnAboutExisting(const HierarchyNode &node) const;
    bool tryMakePath() const;
    void forwardPathChange();

    const QString nodeId;
    std::weak_ptr<HierarchyNode> parent;
    mutable HierarchyNodePathSynchronizer path;
    std::unique_ptr<utils::HierarchyChildTable> childNodes;
    std::atomic<bool> deleteFlag{false};
    const bool standsForTarget;
    // Guarded by the mutex of the shape: nothing can lie below a node that never was a parent.
    bool wasParent = false;
};

} // namespace Shared::Hierarchy
