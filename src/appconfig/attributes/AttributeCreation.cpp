#include <appconfig/attributes/AttributeCreation.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyNodeLink.h>
#include <shared/hierarchy/HierarchyStringPath.h>

#include <algorithm>

namespace Tessellum::AppConfig::Attributes {

using Notification::utils::MakeNode;
using Shared::Hierarchy::HierarchyNode;
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
    if (node->addChild(made))
        return made;
    return FindChild(node, id); // another thread was quicker
}

bool OverwriteOrAddLeaf(const NodePtr &node, const QString &id, const Attribute::Details &details,
                        bool keepExisting)
{
    NodePtr child = FindChild(node, id);
    if (!child) {
        if (node->addChild(MakeNode<Attribute>(id, details)))
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

bool HasGone(const NodePtr &node)
{
    return node->isDeleteFlagSet();
}

} // namespace

bool CreateAttributeInHierarchy(const NodePtr &parent, const AttributeCreateData &data, bool keepExisting)
{
    QStringList elements
        = HierarchyStringPath::SplitPath(data.name, HierarchyNode::GetHierarchyNodePathSeparator());
    if (elements.contains(QString()))
        return false; // no node can have that name, so nothing is made on the way to it
    const QString leaf = elements.takeLast();

    for (int attempt = 0; attempt < MaximumAttempts; ++attempt) {
        QList<NodePtr> way{parent};
        for (const QString &element : qAsConst(elements)) {
            const NodePtr next = FindOrAddParent(way.constLast(), element);
            if (!next)
                return false;
            way.append(next);
        }
        if (!OverwriteOrAddLeaf(way.constLast(), leaf, data.details, keepExisting) || HasGone(parent))
            return false;
        // What was hung beneath a node that another thread took off the tree meanwhile is lost with it.
        if (std::none_of(way.cbegin(), way.cend(), HasGone))
            return true;
    }
    return false;
}

} // namespace Tessellum::AppConfig::Attributes
