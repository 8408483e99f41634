#pragma once

#include <shared/hierarchy/HierarchyStringPath.h>

namespace Shared::Hierarchy {

/*! Holds the path of a node. Empty until somebody has asked the node for its path: most leaves are never
 * asked. Copies share the path. Not safe for concurrent change: the node guards it. */
class TESSELLUM_EXPORT HierarchyNodePathSynchronizer
{
public:
    HierarchyNodePathSynchronizer() = default;
    /*! Holds a copy of \a source. */
    explicit HierarchyNodePathSynchronizer(const HierarchyStringPath &source)
        : path(std::make_shared<HierarchyStringPath>(source))
    { }
    /*! Takes over \a made. */
    explicit HierarchyNodePathSynchronizer(std::shared_ptr<HierarchyStringPath> made)
        : path(std::move(made))
    { }
    HierarchyNodePathSynchronizer(const HierarchyNodePathSynchronizer &) = default;
    HierarchyNodePathSynchronizer &operator=(const HierarchyNodePathSynchronizer &) = default;
    virtual ~HierarchyNodePathSynchronizer() = default;

    std::shared_ptr<HierarchyStringPath> get() { return path; }
    std::shared_ptr<const HierarchyStringPath> get() const { return path; }
    explicit operator bool() const { return path != nullptr; }
    HierarchyStringPath *operator->() { return path.get(); }
    const HierarchyStringPath *operator->() const { return path.get(); }
    HierarchyStringPath &operator*() { return *path; }
    const HierarchyStringPath &operator*() const { return *path; }

private:
    std::shared_ptr<HierarchyStringPath> path;
};

} // namespace Shared::Hierarchy
