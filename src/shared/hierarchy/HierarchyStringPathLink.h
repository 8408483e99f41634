#pragma once

#include <shared/hierarchy/HierarchyStringPath.h>

#include <QList>
#include <QMetaType>

namespace Shared::Hierarchy {

/*!
 * A value that points to paths without owning them, and that travels in a QVariant; there it converts to the
 * text of its first path.
 *
 * Paths are told apart by their full text; a path that has gone equals none. Not safe for concurrent change.
 */
class TESSELLUM_EXPORT HierarchyStringPathLink
{
public:
    using Target = std::weak_ptr<const HierarchyStringPath>;

    explicit HierarchyStringPathLink(const Target &target = Target());
    HierarchyStringPathLink(const HierarchyStringPathLink &other);
    HierarchyStringPathLink &operator=(const HierarchyStringPathLink &other);
    ~HierarchyStringPathLink();

    /*! The full path of the first entry; empty where there is none or it has gone. */
    operator QString() const;
    /*! Appends \a target; false where a path with the same text is there. */
    bool add(const Target &target);
    bool contains(const Target &target) const;
    /*! Removes all entries with the text of \a target; whether there was any. */
    bool remove(const Target &target);
    /*! Takes the first entry off; empty from an empty list. */
    Target pop();
    /*! Removes the entries that have gone and returns their number. */
    int cleanup();
    void clear();
    bool isEmpty() const;

private:
    QList<Target> targets;
};

} // namespace Shared::Hierarchy

Q_DECLARE_METATYPE(Shared::Hierarchy::HierarchyStringPathLink)
