#pragma once

#include <shared/hierarchy/HierarchyNodeInstance.h>

namespace Shared::Hierarchy {

/*!
 * A node that shows itself as its target, id and path included, without owning it.
 *
 * Const operations reach the target through a const pointer, the others through a writable one, which a
 * reference made from a const pointer does not have. A target that is out of reach or gone is an empty answer
 * or false. A reference cannot be hung into a tree. Threads: any; the target brings its own lock.
 */
class TESSELLUM_EXPORT HierarchyNodeReference : public HierarchyNodeInstance
{
    Q_OBJECT

public:
    explicit HierarchyNodeReference(const std::weak_ptr<const HierarchyNodeInstance> &target);
    explicit HierarchyNodeReference(const std::weak_ptr<HierarchyNodeInstance> &target);
    ~HierarchyNodeReference() override;

    using HierarchyNodeInstance::hasChild;
    QString getId() const override;
    quint64 getNumberOfChildren() const override;
    QList<std::shared_ptr<const HierarchyNode>> getChildren(const bool &recursive) const override;
    QList<std::shared_ptr<HierarchyNode>> getChildren(const bool &recursive) override;
    bool hasChild(const QString &id) const override;
    std::shared_ptr<HierarchyNode> findChildByRelativePath(const QString &path) override;
    std::shared_ptr<const HierarchyNode> findChildByRelativePath(const QString &path) const override;
    bool addChild(const std::shared_ptr<HierarchyNode> &child, quint64 *index = nullptr) override;
    std::shared_ptr<const HierarchyStringPath> getNodePath() const override;
    std::shared_ptr<HierarchyNode> getParent() override;
    std::shared_ptr<const HierarchyNode> getParent() const override;

    /*! Whether the target has gone or never was. */
    bool isEmpty() const;
    /*! Whether the target is off the tree for good; true also where it has gone. */
    bool isReferenceDeleteFlagSet() const;
    /*! Takes the target off the tree; false where it has gone or is const. */
    bool setReferenceDeleteFlag();

private:
    const std::weak_ptr<HierarchyNodeInstance> writable;
    const std::weak_ptr<const HierarchyNodeInstance> readable;
};

} // namespace Shared::Hierarchy
