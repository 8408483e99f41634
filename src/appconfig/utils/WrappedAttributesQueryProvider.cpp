#include <appconfig/attributes/AttributeReference.h>
#include <appconfig/utils/WrappedAttributesQueryProvider.h>

namespace Tessellum::AppConfig::utils {

using Attributes::Attribute;
using Attributes::AttributeReference;
using Interfaces::AttributeInterface;

WrappedAttributesQueryProvider::WrappedAttributesQueryProvider(
    const std::weak_ptr<AttributesQueryProvider> &provider, QReadWriteLock *lock,
    const std::shared_ptr<Shared::Localization::LocalizationInterface> &valueLocalization)
    : ProviderFront(provider, lock)
    , localization(valueLocalization)
    , conversion(std::dynamic_pointer_cast<Core::CoreLocalizationInterface>(valueLocalization))
{ }

QList<std::shared_ptr<AttributeInterface>>
WrappedAttributesQueryProvider::queryAttributes(const QString &pattern)
{
    const auto found
        = reading([&](const AttributesQueryProvider &provider) { return provider.findAttributes(pattern); });
    QList<std::shared_ptr<AttributeInterface>> result;
    result.reserve(found.size());
    for (const auto &attribute : found) {
        const std::weak_ptr<const Attribute> readable = attribute;
        result.append(std::make_shared<AttributeReference>(readable, localization));
    }
    return result;
}

bool WrappedAttributesQueryProvider::getValue(const QString &path, QVariant &out, const int &metaType)
{
    const auto attribute
        = reading([&](const AttributesQueryProvider &provider) { return provider.findAttribute(path); });
    return attribute && ReadAttributeValue(*attribute, conversion, out, metaType);
}

std::shared_ptr<AttributeInterface> WrappedAttributesQueryProvider::getAttribute(const QString &path)
{
    const std::shared_ptr<Attribute> attribute
        = reading([&](AttributesQueryProvider &provider) { return provider.findAttribute(path); });
    if (!attribute)
        return nullptr;
    return std::make_shared<AttributeReference>(std::weak_ptr<Attribute>(attribute), localization);
}

std::shared_ptr<const AttributeInterface>
WrappedAttributesQueryProvider::getAttribute(const QString &path) const
{
    const auto attribute
        = reading([&](const AttributesQueryProvider &provider) { return provider.findAttribute(path); });
    if (!attribute)
        return nullptr;
    return std::make_shared<const AttributeReference>(std::weak_ptr<const Attribute>(attribute),
                                                      localization);
}

} // namespace Tessellum::AppConfig::utils
