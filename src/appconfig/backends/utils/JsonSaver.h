#pragma once

#include <shared/hierarchy/HierarchyNode.h>

#include <QJsonObject>
#include <QMap>

namespace Tessellum::AppConfig::Backends::utils {

/*!
 * Turns the tree beneath a node into a JSON object. One tree, one thread; holds no lock while an attribute is
 * read. Children are written in their order, but the members of an object are sorted by their key.
 */
class JsonSaver
{
public:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

    /*! The deepest nesting that QJsonDocument reads again. */
    static constexpr int MaximumDepth = 1024;

    /*! The object of all beneath \a node; \a count becomes the number of values in it. */
    QJsonObject saveHierarchy(const NodePtr &node, int &count);
    /*! Whether the last tree went deeper than a document may; its object is not whole then. */
    bool isTooDeep() const { return tooDeep; }

private:
    /*! Sorted before it becomes an object: an insert into the middle of a QJsonObject moves all behind it. */
    using Members = QMap<QString, QJsonValue>;

    int saveHierarchyIntoJsonObject(const NodePtr &node, Members &members, const QString &prefix, int depth);
    int saveHierarchyIntoJsonArray(const NodePtr &node, QJsonArray &array, int depth);
    int saveArrayMember(const NodePtr &node, const QString &id, Members &members, const QString &prefix,
                        int depth);
    int saveNestedObject(const NodePtr &node, QJsonValue &out, int depth);
    int saveNestedArray(const NodePtr &node, QJsonValue &out, int depth);
    bool isDepthAllowed(int depth);

    bool tooDeep = false;
};

} // namespace Tessellum::AppConfig::Backends::utils
