#pragma once

#include <shared/hierarchy/HierarchyPath.h>

namespace Shared::Hierarchy {

/*! A path of texts, and the functions on path texts. Threads: any, see HierarchyPath. */
class TESSELLUM_EXPORT HierarchyStringPath : public HierarchyPath<QString, QStringList, QString, void>
{
public:
    using Base = HierarchyPath<QString, QStringList, QString, void>;

    HierarchyStringPath(const std::shared_ptr<Base> &parent, const QString &separator, const QString &id);
    /*! A path of its own below the same parent, with the texts and the version of \a other. */
    HierarchyStringPath(const HierarchyStringPath &other);
    ~HierarchyStringPath() override;

    QString at(const int &index) const override;
    int size() const override;
    QStringList split() const override;
    bool isValid() const override;
    bool isEmpty() const override;

    /*! The elements of \a path, split with the separator of this path. */
    QStringList getPathElementsFromPath(const QString &path) const;
    /*! Takes this path apart: its last element and the path of what is before it, empty where nothing is. */
    void getPathElementsFromPath(QString &lastElement, QString &parentPath) const;
    /*! \a elements joined with the separator of this path. */
    QString getPathFromPathElements(const QStringList &elements) const;

    /*! The elements; empty ones are kept, so that an empty text has one empty element. */
    static QStringList SplitPath(const QString &path, const QString &separator);
    static QString JoinPath(const QStringList &elements, const QString &separator);
    /*! Whether \a path has no element. False for an empty text, which has an empty one. */
    static bool IsEmptyPath(const QString &path, const QString &separator);
    /*! Whether each element consists of letters, digits and underscores and is not empty. */
    static bool IsValidPath(const QString &path, const QString &separator);
    /*! \a path without its last \a count elements; empty where none would remain. */
    static QString RemoveBack(const HierarchyStringPath &path, const int &count);
    /*! \a path without its first \a count elements; empty where none would remain. */
    static QString RemoveFront(const HierarchyStringPath &path, const int &count);
};

} // namespace Shared::Hierarchy
