#include <appconfig/utils/ValueConversion.h>
#include <shared/localization/NumericStrings.h>

namespace Tessellum::AppConfig::utils {

namespace {

QVariant ReadNumber(const QLocale &locale, QString text, int metaType)
{
    // A number with thousands separators is more often a list or a date than a number: it must not parse.
    text.replace(locale.groupSeparator(), QLatin1Char('X'));
    return Shared::Localization::LocalizeNumericString(locale, text, metaType, QVariant());
}

} // namespace

bool ConvertValue(QVariant &value, const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                  int metaType)
{
    if (value.userType() == metaType)
        return true;
    if (metaType == QMetaType::UnknownType)
        return false;
    if (!localization || value.userType() != QMetaType::QString
        || !Shared::Localization::IsArithmeticType(static_cast<QMetaType::Type>(metaType)))
        return value.convert(metaType);

    const QString text = value.toString();
    QVariant number = ReadNumber(localization->defaultLocale(), text, metaType);
    if (!number.isValid()) {
        for (const QLocale &locale : localization->getRegisteredLocales()) {
            number = ReadNumber(locale, text, metaType);
            if (number.isValid())
                break;
        }
    }
    if (!number.isValid())
        return false;
    value = number;
    return true;
}

} // namespace Tessellum::AppConfig::utils
