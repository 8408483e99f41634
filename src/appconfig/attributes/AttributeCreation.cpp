#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/utils/LiveNode.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyNodeLink.h>
#include <shared/hierarchy/HierarchyStringPath.h>

#include <algorithm>

namespace Tessellum::AppConfig::Attributes {

using Notification::utils::MakeNode;
using Shared::Hierarchy::HierarchyNode;
using Shared::Hierarchy::HierarchyNodeInstance;
using Shared::Hierarchy::HierarchyNodeLink;
using Shared::Hierarchy::HierarchyStringPath;
using NodePtr = std::shared_ptr<HierarchyNode>;

namespace {

// Only a deletion of a node on the way makes a further attempt necessary.
constexpr int MaximumAttempts = 100;

NodePtr FindChild(const NodePtr &node, const QString &id)
{
    NodePtr child = node->getChildById(id);
    // A link does not show the children of its target as its own.
    if (!child && qobject_cast<HierarchyNodeLink *>(node.get()))
        child = node->findChildByRelativePath(id);
    return child;
}

NodePtr FindOrAddParent(const NodePtr &node, const QString &id)
{
    if (const NodePtr child = FindChild(node, id))
        return child;
    const auto made = MakeNode<Attribute>(id);
    for (int attempt = 0; attempt < MaximumAttempts; ++attempt) {
        if (HierarchyNodeInstance::AddIfAbsent(*node, made))
            return made;
        // Another thread was quicker, but may have taken its own away again.
        if (const NodePtr child = FindChild(node, id))
            return child;
    }
    return nullptr;
}

bool OverwriteOrAddLeaf(const NodePtr &node, const QString &id, const Attribute::Details &details,
                        bool keepExisting)
{
    NodePtr child = FindChild(node, id);
    if (!child) {
        if (HierarchyNodeInstance::AddIfAbsent(*node, MakeNode<Attribute>(id, details)))
            return true;
        child = FindChild(node, id); // another thread was quicker
    }
    const auto attribute = std::dynamic_pointer_cast<Attribute>(child);
    if (!attribute)
        return false;
    if (!keepExisting)
        attribute->setDetails(details);
    return true;
}

/*! The nodes from the parent of a create down to that of a leaf. */
struct Way
{
    QString path; // of the last node, relative to the first
    QList<NodePtr> nodes;
};

/*! False where a node on the way cannot be. */
bool MakeWay(const NodePtr &parent, const QString &path, Way &way)
{
    const QStringList elements = path.isEmpty()
        ? QStringList()
        : HierarchyStringPath::SplitPath(path, HierarchyNode::GetHierarchyNodePathSeparator());
    if (elements.contains(QString()))
        return false; // no node can have that name, so nothing is made on the way to it
    way = {path, {parent}};
    for (const QString &element : elements) {
        const NodePtr next = FindOrAddParent(way.nodes.constLast(), element);
        if (!next) {
            way = {};
            return false;
        }
        way.nodes.append(next);
    }
    return true;
}

/*! \a way is that of the last element; lists have many elements beneath one node. */
bool CreateAlong(const NodePtr &parent, const AttributeCreateData &data, bool keepExisting, Way &way)
{
    const QString separator = HierarchyNode::GetHierarchyNodePathSeparator();
    const int end = data.name.lastIndexOf(separator);
    const QString leaf = end < 0 ? data.name : data.name.mid(end + separator.size());
    const QStringRef path = data.name.leftRef(qMax(end, 0));
    if (leaf.isEmpty() || end == 0)
        return false;

    for (int attempt = 0; attempt < MaximumAttempts; ++attempt) {
        if ((way.nodes.isEmpty() || way.path != path) && !MakeWay(parent, path.toString(), way))
            return false;
        const bool created = OverwriteOrAddLeaf(way.nodes.constLast(), leaf, data.details, keepExisting);
        if (parent->isDeleteFlagSet())
            return false;
        // What was hung beneath a node that another thread took off the tree meanwhile is lost with it.
        if (AppConfig::utils::AreAllLive(way.nodes))
            return created;
        way = {};
    }
    return false;
}

} // namespace

bool CreateAttributeInHierarchy(const NodePtr &parent, const AttributeCreateData &data, bool keepExisting)
{
    Way way;
    return CreateAlong(parent, data, keepExisting, way);
}

int CreateAttributesInHierarchy(const NodePtr &parent, const AttributesCreateData &list)
{
    Way way;
    return int(std::count_if(list.cbegin(), list.cend(), [&](const AttributeCreateData &data) {
        return CreateAlong(parent, data, false, way);
    }));
}

} // namespace Tessellum::AppConfig::Attributes
