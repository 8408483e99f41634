#pragma once

#include <shared/synchronization/SharedLockable.h>

#include <QList>
#include <QString>

namespace Shared::Hierarchy {

class HierarchyStringPath;

/*!
 * A named node of the one tree.
 *
 * Ownership: a node lives in a std::shared_ptr with Release as deleter; the parent owns its children, a child
 * knows its parent weakly. Threads: any. Each node has a recursive lock for its own fields. Do not call
 * addChild, setParent or setDeleteFlag with the lock of any node held: they take the locks of parent and
 * child, one after the other. Failures are a false or an empty pointer. Nothing throws.
 */
class TESSELLUM_EXPORT HierarchyNode : public Synchronization::SharedLockable<HierarchyNode>
{
    Q_OBJECT

public:
    explicit HierarchyNode(QObject *parent = nullptr);
    ~HierarchyNode() override;

    /*! The name among the children of the parent; empty for a root. Never changes. */
    virtual QString getId() const = 0;
    /*! Whether the node has been taken off the tree for good. */
    virtual bool isDeleteFlagSet() const = 0;
    /*! Takes the node off the tree, silently and for good. True from then on, also if it already was. */
    virtual bool setDeleteFlag() = 0;
    virtual quint64 getNumberOfChildren() const = 0;
    /*! The children in the order in which they came; with \a recursive followed by all that lies below them,
     * child by child. */
    virtual QList<std::shared_ptr<const HierarchyNode>> getChildren(const bool &recursive) const = 0;
    virtual QList<std::shared_ptr<HierarchyNode>> getChildren(const bool &recursive) = 0;
    /*! Whether a child has the id of \a child. If so, \a index (may be null) becomes its position. */
    virtual bool hasChild(const std::shared_ptr<const HierarchyNode> &child,
                          quint64 *index = nullptr) const = 0;
    virtual bool hasChild(const QString &id) const = 0;
    /*! The node at \a path below this one, this one for an empty path, or an empty pointer. */
    virtual std::shared_ptr<HierarchyNode> findChildByRelativePath(const QString &path) = 0;
    virtual std::shared_ptr<const HierarchyNode> findChildByRelativePath(const QString &path) const = 0;
    /*! Makes \a child the last child of this node, and takes it from its parent if it has one. False where
     * its id is empty or taken, or where this node lies below it. \a index (may be null) becomes its
     * position. */
    virtual bool addChild(const std::shared_ptr<HierarchyNode> &child, quint64 *index = nullptr) = 0;
    virtual std::shared_ptr<const HierarchyStringPath> getNodePath() const = 0;
    virtual std::shared_ptr<HierarchyNode> getParent() = 0;
    virtual std::shared_ptr<const HierarchyNode> getParent() const = 0;

public Q_SLOTS:
    /*! Called when the path of the parent has changed. */
    virtual void onParentPathChanged() = 0;

public:
    /*! Moves the node below \a parent, or takes it off the tree where that is empty. Emits pathChanged()
     * unless \a silent. False where the new parent could not take the node, which has no parent then, or
     * where the new parent is the node itself or lies below it; then nothing has changed. */
    virtual bool setParent(const std::weak_ptr<HierarchyNode> &parent, const bool &silent = false) = 0;
    virtual std::shared_ptr<HierarchyNode> getChildById(const QString &id) = 0;
    virtual std::shared_ptr<const HierarchyNode> getChildById(const QString &id) const = 0;

    std::shared_ptr<HierarchyNode> self() { return getSharedFromThis(); }
    std::shared_ptr<const HierarchyNode> self() const { return getSharedFromThis(); }
    /*! The topmost node above this one, this one if it has no parent. */
    std::shared_ptr<HierarchyNode> getRootNode();
    std::shared_ptr<const HierarchyNode> getRootNode() const;

    /*! The nodes that \a searchPath matches, element by element. An element may hold the wildcards of a
     * shell; a last element with a "?" or with a "*" at its end brings in all that lies below its matches.
     * Exists for T = HierarchyNode. */
    template <class T>
    QList<std::shared_ptr<T>> queryChildren(const QString &searchPath);

    /*! The separator of the paths of all nodes: ".". */
    static const QString &GetHierarchyNodePathSeparator();
    /*! The deleter of every node: deletes on the thread of the node, at once where that is the calling thread
     * or no thread is going to deliver a deferred deletion. Null is ignored. */
    static void Release(HierarchyNode *node);

Q_SIGNALS:
    /*! The path of this node has changed. Emitted with no lock held, by the thread that moved the node or,
     * below a moved one, by the node's own thread. */
    void pathChanged();
};

template <>
TESSELLUM_EXPORT QList<std::shared_ptr<HierarchyNode>>
HierarchyNode::queryChildren<HierarchyNode>(const QString &searchPath);

} // namespace Shared::Hierarchy
