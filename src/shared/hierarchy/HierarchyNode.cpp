#include <shared/hierarchy/HierarchyNode.h>
#include <shared/hierarchy/HierarchyNodeReference.h>
#include <shared/hierarchy/HierarchyStringPath.h>
#include <shared/logging/FrameworkLog.h>

#include <QCoreApplication>
#include <QRegExp>
#include <QThread>

#include <algorithm>

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
            if (auto child = node.getChildById(text))
                matches.append(std::move(child));
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

void query(HierarchyNode &node, const QStringList &elements, int first, NodeList &found);

// A reference has no children of its own: what it shows are those of its target.
void queryBelow(HierarchyNode &node, const QStringList &elements, int first, NodeList &found)
{
    const auto reference = dynamic_cast<HierarchyNodeReference *>(&node);
    if (!reference)
        query(node, elements, first, found);
    else if (const auto target = reference->findChildByRelativePath(QString()))
        query(*target, elements, first, found);
}

void query(HierarchyNode &node, const QStringList &elements, int first, NodeList &found)
{
    if (elements.at(first).isEmpty())
        return;
    const ElementPattern pattern(elements.at(first));
    const bool last = first + 1 == elements.size();
    const bool endsHere = last || elements.at(first + 1).isEmpty();
    const NodeList matches = pattern.matchesAmongChildren(node);
    for (const auto &child : matches) {
        if (!endsHere) {
            queryBelow(*child, elements, first + 1, found);
            continue;
        }
        found.append(child);
        if (last && pattern.reachesBelow())
            found.append(child->getChildren(true));
    }
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
    NodeList found;
    const QStringList elements = HierarchyStringPath::SplitPath(searchPath, GetHierarchyNodePathSeparator());
    if (elements.isEmpty())
        Logging::FrameworkLog().warning()
            << "HierarchyNode::queryChildren<HierarchyNode>() Search path is empty!";
    else
        queryBelow(*this, elements, 0, found);
    return found;
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
