#pragma once

#include <shared/hierarchy/HierarchyNode.h>

#include <unordered_map>
#include <vector>

namespace Shared::Hierarchy::utils {

/*!
 * Lists all that lies below a node, from a stack of its own: a tree may be deeper than the stack of a thread.
 *
 * The way through a link leads into the tree of its target and so, over further links, maybe back to itself.
 * Such a link shows nothing below it. Where links lead round, each target is opened once from then on: the
 * ways through a handful of links to one another are more than anyone can list.
 */
template <class Node>
class Descendants
{
public:
    using NodeList = QList<std::shared_ptr<Node>>;

    /*! \a children and what lies below each of them, child by child. */
    static NodeList of(NodeList children)
    {
        Descendants walk(std::move(children));
        walk.run();
        return std::move(walk.found);
    }

private:
    struct Step
    {
        std::shared_ptr<Node> node;
        bool isEndOfTarget;
    };

    explicit Descendants(NodeList children)
        : found(std::move(children))
    {
        push(found);
    }

    void run()
    {
        while (!steps.empty()) {
            const Step step = std::move(steps.back());
            steps.pop_back();
            if (step.isEndOfTarget) {
                isOpen[step.node] = false;
                continue;
            }
            const NodeList children = step.node->getChildren(false);
            if (children.isEmpty() || !open(step.node))
                continue;
            found.append(children);
            push(children);
        }
    }

    // The last one first: the first one is to be taken next.
    void push(const NodeList &nodes)
    {
        for (auto node = nodes.crbegin(); node != nodes.crend(); ++node)
            steps.push_back({*node, false});
    }

    // Whether what lies below \a node is to be listed. A link hands out its target at an empty path.
    bool open(const std::shared_ptr<Node> &node)
    {
        std::shared_ptr<Node> target = node->findChildByRelativePath(QString());
        if (!target || target == node)
            return true;
        const auto [entry, isNew] = isOpen.emplace(target, true);
        if (!isNew) {
            hasCycle = hasCycle || entry->second;
            if (hasCycle)
                return false;
            entry->second = true;
        }
        steps.push_back({std::move(target), true});
        return true;
    }

    NodeList found;
    std::vector<Step> steps;
    std::unordered_map<std::shared_ptr<Node>, bool> isOpen; // the targets met so far
    bool hasCycle = false;
};

} // namespace Shared::Hierarchy::utils
