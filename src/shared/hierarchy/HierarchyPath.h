#pragma once

#include <shared/hierarchy/utils/ReleaseInTurn.h>
#include <shared/synchronization/ScopedLock.h>

#include <QString>
#include <QStringList>
#include <QVarLengthArray>

#include <algorithm>
#include <functional>
#include <memory>

namespace Shared::Hierarchy {

/*!
 * A place in a tree of texts: an own id, a separator and the path above. The full text is put together when
 * it is read, and again only after something above has moved, so that a move costs the same however much lies
 * below.
 *
 * The version of a path is the sum of the own versions up to the root. It strictly rises with each move of
 * the path or of anything above it, and a text made at another version of the parent is stale.
 *
 * Threads: any. The lock of a path guards its own fields; locks are taken from a path upward, each held until
 * the walk is over, so that a sum is one that held at one moment.
 */
template <class Value, class List, class Separator, class Extra>
class HierarchyPath : public Synchronization::Lockable
{
public:
    /*! Holds the two texts of a path and knows how to join them. */
    class PathAccessWrapper
    {
    public:
        using Combine = std::function<Value(Value parentPath, const Value &id)>;

        PathAccessWrapper(const Value &parentPath, const Value &ownId, const Combine &join)
            : combine(join)
            , id(ownId)
        {
            setParentPath(parentPath);
        }

        Value getId() const { return id; }
        operator Value() const { return fullPath; }
        void setParentPath(const Value &parentPath) { fullPath = extended(parentPath); }
        /*! \a parentPath with the id of this path behind it. */
        Value extended(Value parentPath) const { return combine(std::move(parentPath), id); }

    private:
        Combine combine;
        Value id;
        Value fullPath;
    };

    HierarchyPath(const std::shared_ptr<HierarchyPath> &parentPath, const Separator &separatorText,
                  const Value &id)
        : Lockable(nullptr, QMutex::Recursive)
        , separator(separatorText)
        , access(Value(), id, standardCombine(separatorText))
    {
        setPathParent(parentPath);
    }

    HierarchyPath(const HierarchyPath &other)
        : HierarchyPath(other, Synchronization::ScopedLock(&other))
    { }
    HierarchyPath &operator=(const HierarchyPath &) = delete;
    ~HierarchyPath() override { utils::releaseInTurn(std::move(parent)); }

    /*! The text from the root down to this path. */
    Value getFullPath() const
    {
        const Synchronization::ScopedLock lock(this);
        if (parent)
            syncToParentPath();
        return access;
    }

    Value getPathId() const
    {
        const Synchronization::ScopedLock lock(this);
        return access.getId();
    }

    std::shared_ptr<HierarchyPath> getParent()
    {
        const Synchronization::ScopedLock lock(this);
        return parent;
    }
    std::shared_ptr<const HierarchyPath> getParent() const
    {
        const Synchronization::ScopedLock lock(this);
        return parent;
    }

    /*! The sum of the own versions from here to the root. */
    quint64 getPathVersion() const
    {
        const Synchronization::ScopedLock lock(this);
        return version + LockedAncestors(parent.get()).version();
    }

    Separator getSeparator() const { return separator; }

    /*! Hangs this path below \a newParent, or makes it a root where that is empty. A path must not be hung
     * below itself. */
    void setPathParent(const std::shared_ptr<HierarchyPath> &newParent)
    {
        std::shared_ptr<HierarchyPath> oldParent;
        const Synchronization::ScopedLock lock(this);
        if (newParent == parent) {
            ++version;
            return;
        }
        // The sum must rise also where the new place has seen fewer moves than the old one.
        const quint64 before = LockedAncestors(parent.get()).version();
        const quint64 after = before > 0 ? LockedAncestors(newParent.get()).version() : 0;
        version += 1 + (before > after ? before - after : 0);
        oldParent = std::move(parent);
        parent = newParent;
        // No parent has the version 0: the text is made anew at the next read.
        syncedParentVersion = 0;
        if (!parent)
            access.setParentPath(Value());
    }

private:
    // Holds the locks from a path up to its root.
    class LockedAncestors
    {
    public:
        explicit LockedAncestors(const HierarchyPath *first)
        {
            for (auto path = first; path; path = path->parent.get()) {
                path->lock();
                paths.append(path);
            }
        }
        ~LockedAncestors()
        {
            std::for_each(paths.crbegin(), paths.crend(), [](const HierarchyPath *path) { path->unlock(); });
        }
        LockedAncestors(const LockedAncestors &) = delete;
        LockedAncestors &operator=(const LockedAncestors &) = delete;

        quint64 version() const
        {
            quint64 sum = 0;
            for (const HierarchyPath *path : paths)
                sum += path->version;
            return sum;
        }

        // The text of the first path, from the lowest one whose own text is up to date. What lies between
        // keeps its old text: a text for each would fill the memory with the square of the depth.
        Value text() const
        {
            quint64 sum = 0;
            int known = paths.size() - 1;
            for (int i = paths.size() - 1; i >= 0; --i) {
                if (paths[i]->syncedParentVersion == sum)
                    known = i;
                sum += paths[i]->version;
            }
            Value text = paths[known]->access;
            while (known > 0)
                text = paths[--known]->access.extended(std::move(text));
            return text;
        }

    private:
        QVarLengthArray<const HierarchyPath *, 16> paths;
    };

    HierarchyPath(const HierarchyPath &other, const Synchronization::ScopedLock &)
        : Lockable(nullptr, QMutex::Recursive)
        , parent(other.parent)
        , separator(other.separator)
        , version(other.version)
        , syncedParentVersion(other.syncedParentVersion)
        , access(other.access)
    { }

    virtual Value getId() const { return getPathId(); }

public:
    /*! The element at \a index, an empty one outside 0 to size() - 1. */
    virtual Value at(const int &index) const = 0;
    /*! The number of elements. */
    virtual int size() const = 0;
    /*! The elements from the root downward. */
    virtual List split() const = 0;
    /*! Whether each element is a word. */
    virtual bool isValid() const = 0;
    /*! Whether there is no element at all. An empty text is one empty element. */
    virtual bool isEmpty() const = 0;

private:
    static typename PathAccessWrapper::Combine standardCombine(const Separator &separatorText)
    {
        return [separatorText](Value parentPath, const Value &id) {
            if (parentPath.isEmpty())
                return id;
            parentPath += separatorText;
            parentPath += id;
            return parentPath;
        };
    }

    // Expects the lock of this path and a parent.
    void syncToParentPath() const
    {
        const LockedAncestors above(parent.get());
        const quint64 parentVersion = above.version();
        if (parentVersion == syncedParentVersion)
            return;
        access.setParentPath(above.text());
        syncedParentVersion = parentVersion;
    }

    std::shared_ptr<HierarchyPath> parent;
    const Separator separator;
    quint64 version = 1;
    mutable quint64 syncedParentVersion = 0;
    mutable PathAccessWrapper access;
};

} // namespace Shared::Hierarchy
