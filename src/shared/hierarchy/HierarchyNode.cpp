#include <shared/hierarchy/HierarchyNode.h>
#include <shared/hierarchy/HierarchyNodeReference.h>
#include <shared/hierarchy/HierarchyStringPath.h>
#include <shared/logging/FrameworkLog.h>

#include <QCoreApplication>
#include <QRegExp>
#include <QThread>

#include <algorithm>
#include <functional>
#include <iterator>
#include <vector>

namespace Shared::Hierarchy {

namespace {

using NodeList = QList<std::shared_ptr<HierarchyNode>>;

// One element of a search path. The regular expression is made where it is used: threads cannot share one.
class ElementPattern
{
public:
    explicit ElementPattern(const QString &element)
        : text(element)
        , literal(std::none_of(element.cbegin(), element.cend(), isWildcard))
        , everything(element == QLatin1String("*"))
    {
        if (!literal && !everything)
            expression = QRegExp(element, Qt::CaseSensitive, QRegExp::Wildcard);
    }

    // Whether the last element of a path brings in what lies below its matches.
    bool reachesBelow() const { return text.contains(QLatin1Char('?')) || text.endsWith(QLatin1Char('*')); }

    NodeList matchesAmongChildren(HierarchyNode &node) const
    {
        NodeList matches;
        if (literal) {
            if (const auto child = node.getChildById(text))
                matches.append(child);
            return matches;
        }
        matches = node.getChildren(false);
        if (!everything) {
            const auto isOther = [this](const std::shared_ptr<HierarchyNode> &c) {
                return !expression.exactMatch(c->getId());
            };
            matches.erase(std::remove_if(matches.begin(), matches.end(), isOther), matches.end());
        }
        return matches;
    }

private:
    static bool isWildcard(const QChar &character) { return QStringView(u"*?[]\\").contains(character); }

    const QString text;
    const bool literal;
    const bool everything;
    QRegExp expression;
};

// A reference has no children of its own: what it shows are those of its target.
NodeList matchesBelow(HierarchyNode &node, const ElementPattern &pattern)
{
    const auto reference = dynamic_cast<HierarchyNodeReference *>(&node);
    if (!reference)
        return pattern.matchesAmongChildren(node);
    const auto target = reference->findChildByRelativePath(QString());
    return target ? pattern.matchesAmongChildren(*target) : NodeList();
}

// The elements up to the first empty one, which ends a search path, and whether there is none.
struct SearchPath
{
    explicit SearchPath(const QStringList &elements)
    {
        const auto end = std::find_if(elements.begin(), elements.end(), std::mem_fn(&QString::isEmpty));
        patterns.reserve(size_t(std::distance(elements.begin(), end)));
        std::for_each(elements.begin(), end, [this](const QString &text) { patterns.emplace_back(text); });
        isWhole = end == elements.end();
    }

    std::vector<ElementPattern> patterns;
    bool isWhole;
};

// A node whose children the element at \a next is to be matched with.
struct SearchStep
{
    std::shared_ptr<HierarchyNode> node;
    size_t next;
};

NodeList search(HierarchyNode &top, const SearchPath &path)
{
    NodeList found;
    // The caller owns the first node.
    std::vector<SearchStep> steps{{{std::shared_ptr<HierarchyNode>(), &top}, 0}};
    while (!steps.empty()) {
        const SearchStep step = std::move(steps.back());
        steps.pop_back();
        const ElementPattern &pattern = path.patterns[step.next];
        const NodeList matches = matchesBelow(*step.node, pattern);
        if (step.next + 1 < path.patterns.size()) {
            // The last one first: the first one is to be taken next.
            for (auto match = matches.crbegin(); match != matches.crend(); ++match)
                steps.push_back({*match, step.next + 1});
            continue;
        }
        const bool withAllBelow = path.isWhole && pattern.reachesBelow();
        for (const auto &match : matches) {
            found.append(match);
            if (withAllBelow)
                found.append(match->getChildren(true));
        }
    }
    return found;
}

// The topmost node that has a parent link to climb from, for both kinds of pointers.
template <class Node>
std::shared_ptr<Node> climbToRoot(std::shared_ptr<Node> node)
{
    while (node) {
        std::shared_ptr<Node> parent = node->getParent();
        if (!parent)
            break;
        node = std::move(parent);
    }
    return node;
}

} // namespace

HierarchyNode::HierarchyNode(QObject *parent)
    : SharedLockable<HierarchyNode>(parent)
{ }

HierarchyNode::~HierarchyNode() = default;

std::shared_ptr<HierarchyNode> HierarchyNode::getRootNode()
{
    return climbToRoot<HierarchyNode>(self());
}

std::shared_ptr<const HierarchyNode> HierarchyNode::getRootNode() const
{
    return climbToRoot<const HierarchyNode>(self());
}

template <>
QList<std::shared_ptr<HierarchyNode>> HierarchyNode::queryChildren<HierarchyNode>(const QString &searchPath)
{
    const QStringList elements = HierarchyStringPath::SplitPath(searchPath, GetHierarchyNodePathSeparator());
    if (elements.isEmpty())
        Logging::FrameworkLog().warning()
            << "HierarchyNode::queryChildren<HierarchyNode>() Search path is empty!";
    const SearchPath path(elements);
    return path.patterns.empty() ? NodeList() : search(*this, path);
}

const QString &HierarchyNode::GetHierarchyNodePathSeparator()
{
    static const QString separator = QStringLiteral(".");
    return separator;
}

void HierarchyNode::Release(HierarchyNode *node)
{
    if (!node)
        return;
    // A thread that has ended, or one without an application, delivers no deferred deletion.
    const QThread *const home = node->thread();
    if (!home || home == QThread::currentThread() || !QCoreApplication::instance() || home->isFinished())
        delete node;
    else
        node->deleteLater();
}

} // namespace Shared::Hierarchy
