#include <appconfig/attributes/Attribute.h>
#include <appconfig/utils/AttributesQueryProvider.h>

namespace Tessellum::AppConfig::utils {

using Attributes::Attribute;
using Interfaces::AttributeInterface;
using Shared::Hierarchy::HierarchyNode;

AttributesQueryProvider::AttributesQueryProvider(const std::shared_ptr<HierarchyNode> &repositoryRoot)
    : root(repositoryRoot)
{ }

QList<std::shared_ptr<AttributeInterface>> AttributesQueryProvider::queryAttributes(const QString &pattern)
{
    QList<std::shared_ptr<AttributeInterface>> result;
    const auto found = findAttributes(pattern);
    result.reserve(found.size());
    for (const auto &attribute : found)
        result.append(attribute);
    return result;
}

bool AttributesQueryProvider::getValue(const QString &path, QVariant &out, const int &metaType)
{
    const auto attribute = std::as_const(*this).findAttribute(path);
    return attribute && ReadAttributeValue(*attribute, nullptr, out, metaType);
}

std::shared_ptr<AttributeInterface> AttributesQueryProvider::getAttribute(const QString &path)
{
    return findAttribute(path);
}

std::shared_ptr<const AttributeInterface> AttributesQueryProvider::getAttribute(const QString &path) const
{
    return findAttribute(path);
}

std::shared_ptr<Attribute> AttributesQueryProvider::findAttribute(const QString &path)
{
    return Attributes::ToAttribute(root->findChildByRelativePath(path));
}

std::shared_ptr<const Attribute> AttributesQueryProvider::findAttribute(const QString &path) const
{
    return Attributes::ToAttribute(std::as_const(*root).findChildByRelativePath(path));
}

QList<std::shared_ptr<Attribute>> AttributesQueryProvider::findAttributes(const QString &pattern) const
{
    QList<std::shared_ptr<Attribute>> result;
    for (const auto &node : root->queryChildren<HierarchyNode>(pattern)) {
        if (const auto attribute = Attributes::ToAttribute(node))
            result.append(attribute);
    }
    return result;
}

bool ReadAttributeValue(const Attribute &attribute,
                        const std::shared_ptr<Core::CoreLocalizationInterface> &localization, QVariant &out,
                        int metaType)
{
    QVariant value;
    if (!attribute.getValue(value, QMetaType::UnknownType) || !value.isValid())
        return false;
    out = std::move(value);
    if (metaType == QMetaType::UnknownType || metaType == out.userType())
        return true;
    return localization ? ConvertValue(out, localization, metaType) : out.convert(metaType);
}

} // namespace Tessellum::AppConfig::utils
