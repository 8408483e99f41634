#pragma once

#include <shared/hierarchy/HierarchyNodeInstance.h>

namespace Shared::Hierarchy {

/*!
 * A node with an id and a place of its own whose subtree is that of a target.
 *
 * Searches, additions and the const list of children go to the target; all else, the non-const list of
 * children too, is the link's own. Through a read-only link the target is reached by const callers alone.
 * Ownership: the target is held weakly; once it has gone the link answers as if nothing were below it.
 * Threads: any; the target brings its own lock.
 */
class TESSELLUM_EXPORT HierarchyNodeLink : public HierarchyNodeInstance
{
    Q_OBJECT

public:
    HierarchyNodeLink(const std::weak_ptr<HierarchyNode> &target, const QString &id,
                      const bool &isReadOnlyLink);
    ~HierarchyNodeLink() override;

    using HierarchyNodeInstance::getChildren;
    QList<std::shared_ptr<const HierarchyNode>> getChildren(const bool &recursive) const override;
    /*! An empty pointer through a read-only link; the target for an empty path. */
    std::shared_ptr<HierarchyNode> findChildByRelativePath(const QString &path) override;
    std::shared_ptr<const HierarchyNode> findChildByRelativePath(const QString &path) const override;
    /*! False through a read-only link. */
    bool addChild(const std::shared_ptr<HierarchyNode> &child, quint64 *index = nullptr) override;

    /*! Whether the target is still there. */
    bool isLinked() const;
    bool isReadOnly() const;

private:
    template <class Link>
    static auto behindAll(Link &first);
    std::shared_ptr<HierarchyNode> getLink();
    std::shared_ptr<const HierarchyNode> getLink() const;

    const std::weak_ptr<HierarchyNode> link;
    const bool readOnly;
};

} // namespace Shared::Hierarchy
