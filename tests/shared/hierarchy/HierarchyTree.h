#pragma once

#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/hierarchy/HierarchyStringPath.h>

#include <QStringList>

#include <ctime>
#include <memory>
#include <support/Literals.h>

// What the tests of the tree share.
namespace HierarchyTree {

using Shared::Hierarchy::HierarchyNode;
using Shared::Hierarchy::HierarchyNodeInstance;
using NodePointer = std::shared_ptr<HierarchyNode>;
using ConstNode = std::shared_ptr<const HierarchyNode>;

template <class Node = HierarchyNodeInstance, class... Arguments>
std::shared_ptr<Node> make(const Arguments &...arguments)
{
    return std::shared_ptr<Node>(new Node(arguments...), &HierarchyNode::Release);
}

// Measures what this process computes, whatever else the machine does meanwhile. In seconds, never 0.
class CpuTimer
{
public:
    double elapsed() const { return double(std::clock() - begin + 1) / CLOCKS_PER_SEC; }

private:
    const std::clock_t begin = std::clock();
};

// Makes the nodes of a path where they are missing and returns the last one.
inline NodePointer grow(const NodePointer &root, const QString &path)
{
    NodePointer node = root;
    const QStringList elements = path.split(QLatin1Char('.'));
    for (const QString &id : elements) {
        if (!node->hasChild(id))
            node->addChild(make(id));
        node = node->getChildById(id);
    }
    return node;
}

constexpr int Deep = 100000;

// Hangs a chain of nodes with the id "a" below \a top, deeper than any stack, and returns its last node.
inline NodePointer growDeep(const NodePointer &top)
{
    NodePointer last = top;
    for (int i = 0; i < Deep; ++i) {
        const NodePointer next = make("a"_s);
        last->addChild(next);
        last = next;
    }
    return last;
}

// The path of that node, and so a pattern that matches it.
inline QString deepPath()
{
    return "a."_s.repeated(Deep - 1) + QLatin1Char('a');
}

inline QString pathOf(const std::shared_ptr<const HierarchyNode> &node)
{
    return node->getNodePath()->getFullPath();
}

template <class Nodes>
QStringList idsOf(const Nodes &nodes)
{
    QStringList ids;
    for (const auto &node : nodes)
        ids.append(node->getId());
    return ids;
}

template <class Nodes>
QStringList pathsOf(const Nodes &nodes)
{
    QStringList paths;
    for (const auto &node : nodes)
        paths.append(pathOf(node));
    return paths;
}

} // namespace HierarchyTree
