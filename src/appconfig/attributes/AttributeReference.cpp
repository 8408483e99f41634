#include <appconfig/attributes/AttributeReference.h>

namespace Tessellum::AppConfig::Attributes {

AttributeReference::AttributeReference(
    const std::weak_ptr<const Attribute> &attribute,
    const std::weak_ptr<Shared::Localization::LocalizationInterface> &attributeLocalization)
    : readable(attribute)
    , localization(attributeLocalization)
{ }

AttributeReference::AttributeReference(
    const std::weak_ptr<Attribute> &attribute,
    const std::weak_ptr<Shared::Localization::LocalizationInterface> &attributeLocalization)
    : writable(attribute)
    , readable(attribute)
    , localization(attributeLocalization)
{ }

bool AttributeReference::isDeleteFlagSet() const
{
    const auto attribute = readable.lock();
    return !attribute || attribute->isDeleteFlagSet();
}

bool AttributeReference::isLocked() const
{
    const auto attribute = readable.lock();
    return attribute && attribute->isLocked();
}

bool AttributeReference::hasValue() const
{
    const auto attribute = readable.lock();
    return attribute && attribute->hasValue();
}

bool AttributeReference::getValue(QVariant &out, const int &metaType) const
{
    const auto attribute = readable.lock();
    if (!attribute)
        return false;
    // Without a type nothing is converted, and no localization needs to be looked at.
    const auto locales = metaType == QMetaType::UnknownType ? nullptr : getLocalization();
    return locales ? attribute->getLocalizedValue(out, locales, metaType)
                   : attribute->getValue(out, metaType);
}

bool AttributeReference::getLocalizedValue(
    QVariant &out, const std::shared_ptr<Core::CoreLocalizationInterface> &valueLocalization,
    const int &metaType) const
{
    const auto attribute = readable.lock();
    return attribute && attribute->getLocalizedValue(out, valueLocalization, metaType);
}

QString AttributeReference::getId() const
{
    const auto attribute = readable.lock();
    return attribute ? attribute->getId() : QString();
}

QString AttributeReference::getPath() const
{
    const auto attribute = readable.lock();
    return attribute ? attribute->getPath() : QString();
}

quint32 AttributeReference::getAccess() const
{
    const auto attribute = readable.lock();
    return attribute ? attribute->getAccess() : 0;
}

bool AttributeReference::markForDeletion()
{
    const auto attribute = writable.lock();
    return attribute ? attribute->markForDeletion() : isDeleteFlagSet();
}

QList<std::shared_ptr<Validation::AttributeValidationInterface>> AttributeReference::getValidations() const
{
    const auto attribute = readable.lock();
    return attribute ? attribute->getValidations()
                     : QList<std::shared_ptr<Validation::AttributeValidationInterface>>();
}

QStringList AttributeReference::getValidationIds() const
{
    const auto attribute = readable.lock();
    return attribute ? attribute->getValidationIds() : QStringList();
}

bool AttributeReference::addValidation(
    const std::shared_ptr<Validation::AttributeValidationInterface> &validation)
{
    const auto attribute = readable.lock();
    return attribute && attribute->addValidationConst(validation);
}

bool AttributeReference::hasValidation(const QString &id) const
{
    const auto attribute = readable.lock();
    return attribute && attribute->hasValidation(id);
}

bool AttributeReference::removeValidation(const QString &id)
{
    const auto attribute = readable.lock();
    return attribute && attribute->removeValidationConst(id);
}

bool AttributeReference::setValue(const QVariant &value)
{
    const auto attribute = writable.lock();
    return attribute && attribute->setValue(value);
}

std::shared_ptr<Core::CoreLocalizationInterface> AttributeReference::getLocalization() const
{
    return std::dynamic_pointer_cast<Core::CoreLocalizationInterface>(localization.lock());
}

} // namespace Tessellum::AppConfig::Attributes
