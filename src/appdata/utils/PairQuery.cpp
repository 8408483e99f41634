#include <appconfig/attributes/Attribute.h>
#include <appdata/utils/PairQuery.h>
#include <shared/hierarchy/HierarchyStringPath.h>

#include <QRegExp>

#include <algorithm>

namespace Tessellum::AppData::utils {

using Shared::Hierarchy::HierarchyNode;
using NodePtr = std::shared_ptr<HierarchyNode>;

namespace {

bool isLiteral(const QString &element)
{
    return std::none_of(element.cbegin(), element.cend(),
                        [](const QChar &character) { return QStringView(u"*?[]\\").contains(character); });
}

QList<NodePtr> attributesAmong(const QList<NodePtr> &nodes)
{
    QList<NodePtr> attributes;
    std::copy_if(nodes.cbegin(), nodes.cend(), std::back_inserter(attributes), [](const NodePtr &node) {
        return dynamic_cast<AppConfig::Attributes::Attribute *>(node.get());
    });
    return attributes;
}

QList<NodePtr> matchesBeneath(HierarchyNode &node, const QString &element)
{
    if (isLiteral(element))
        return attributesAmong({node.getChildById(element)});
    const QRegExp expression(element, Qt::CaseSensitive, QRegExp::Wildcard);
    QList<NodePtr> matches = attributesAmong(node.getChildren(false));
    const auto isOther = [&](const NodePtr &child) { return !expression.exactMatch(child->getId()); };
    matches.erase(std::remove_if(matches.begin(), matches.end(), isOther), matches.end());
    return matches;
}

void appendAllBeneath(QList<NodePtr> &found)
{
    for (int next = 0; next < found.size(); ++next)
        found.append(attributesAmong(found.at(next)->getChildren(false)));
}

} // namespace

QStringList FindPairPaths(HierarchyNode &root, const QString &pattern)
{
    const QStringList elements = Shared::Hierarchy::HierarchyStringPath::SplitPath(
        pattern, HierarchyNode::GetHierarchyNodePathSeparator());
    QList<NodePtr> found{root.self()};
    QString last;
    for (const QString &element : elements) {
        if (element.isEmpty()) // nothing lies beneath an empty element
            return {};
        QList<NodePtr> next;
        for (const NodePtr &node : qAsConst(found))
            next.append(matchesBeneath(*node, element));
        found = next;
        last = element;
    }
    if (last.isEmpty())
        return {};
    if (last.contains(QLatin1Char('?')) || last.endsWith(QLatin1Char('*')))
        appendAllBeneath(found);
    QStringList paths;
    for (const NodePtr &node : qAsConst(found))
        paths.append(node->getNodePath()->getFullPath());
    return paths;
}

} // namespace Tessellum::AppData::utils
