#include <appconfig/attributes/Attribute.h>
#include <appconfig/utils/ValueConversion.h>
#include <appconfig/validation/LimitsValidation.h>
#include <notification/utils/MakeNode.h>
#include <shared/conversion/DoubleConversion.h>

#include <QMetaType>

#include <type_traits>

namespace Tessellum::AppConfig::Validation {

using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

namespace {

const QLatin1String TypeKey("Type");
const QLatin1String MinimumKey("Minimum");
const QLatin1String MaximumKey("Maximum");
const QLatin1String ClippingKey("Clipping");

// A limit is cut to T as an integer is, so that 300 is 44 as a signed char. A double that a long long cannot
// hold is cut to its range first: the cast would be undefined.
template <class T>
T Narrowed(double value)
{
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else
        return static_cast<T>(
            Shared::Conversion::ConvertDouble(QMetaType::LongLong, value).template value<long long>());
}

template <class T>
bool ReadLimit(const Interfaces::AttributeInterface &attribute, std::atomic<T> &limit)
{
    QVariant value;
    if (!attribute.getValue(value, QMetaType::Double))
        return false;
    limit = Narrowed<T>(value.toDouble());
    return true;
}

bool ReadFlag(const Interfaces::AttributeInterface &attribute, std::atomic<bool> &flag)
{
    QVariant value;
    if (!attribute.getValue(value, QMetaType::Bool))
        return false;
    flag = value.toBool();
    return true;
}

} // namespace

template <class T>
LimitsValidation<T>::LimitsValidation(const QString &validationId)
    : AttributeValidationInterface(validationId)
{ }

template <class T>
QString LimitsValidation<T>::getValidationId() const
{
    return getId();
}

template <class T>
ValidationResult
LimitsValidation<T>::validate(const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                              QVariant &value)
{
    QVariant converted = value;
    if (!AppConfig::utils::ConvertValue(converted, localization, qMetaTypeId<T>()))
        converted = QVariant::fromValue(T(0));
    if (!converted.isValid())
        return ValidationResult::Incompatible;
    const T number = converted.template value<T>();
    const T low = minimum;
    const T high = maximum;
    if (!clipping) // asked so that "not a number" fails
        return number >= low && number <= high ? ValidationResult::Valid : ValidationResult::Failed;
    const T notAbove = high < number ? high : number;
    value = QVariant::fromValue(low < notAbove ? notAbove : low);
    return ValidationResult::Adjusted;
}

template <class T>
bool LimitsValidation<T>::addChild(const NodePtr &child, quint64 *index)
{
    return readChild(child) && HierarchyNodeInstance::addChild(child, index);
}

template <class T>
bool LimitsValidation<T>::setParent(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &newParent,
                                    const bool &silent)
{
    return makeMissingChild(MinimumKey, QVariant::fromValue(minimum.load()))
        && makeMissingChild(MaximumKey, QVariant::fromValue(maximum.load()))
        && makeMissingChild(ClippingKey, clipping.load())
        && HierarchyNodeInstance::setParent(newParent, silent);
}

template <class T>
bool LimitsValidation<T>::readChild(const NodePtr &child)
{
    const auto attribute = std::dynamic_pointer_cast<Interfaces::AttributeInterface>(child);
    if (!attribute)
        return false;
    const QString key = attribute->getId();
    if (key == MinimumKey)
        return ReadLimit(*attribute, minimum);
    if (key == MaximumKey)
        return ReadLimit(*attribute, maximum);
    if (key == ClippingKey)
        return ReadFlag(*attribute, clipping);
    return key == TypeKey;
}

template <class T>
bool LimitsValidation<T>::makeMissingChild(const QString &key, const QVariant &value)
{
    if (hasChild(key))
        return true;
    return addChild(Notification::utils::MakeNode<Attributes::Attribute>(key, value), nullptr);
}

template class LimitsValidation<signed char>;
template class LimitsValidation<short>;
template class LimitsValidation<int>;
template class LimitsValidation<float>;
template class LimitsValidation<double>;
template class LimitsValidation<long long>;

} // namespace Tessellum::AppConfig::Validation
