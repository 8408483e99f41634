#include <shared/conversion/DoubleConversion.h>
#include <shared/localization/NumericStrings.h>
#include <shared/logging/FrameworkLog.h>

namespace Shared::Localization {

namespace {

bool ReadNumber(const QLocale &locale, const QString &text, const int &type, QVariant &result)
{
    bool ok = false;
    const double number = locale.toDouble(text, &ok);
    result = Conversion::ConvertDouble(type, number);
    return ok && result.isValid();
}

} // namespace

bool IsArithmeticType(const QMetaType::Type &type)
{
    const int number = type;
    return (number >= QMetaType::Bool && number <= QMetaType::Double)
        || (number >= QMetaType::Long && number <= QMetaType::Float);
}

StringLocalizationFunctionWrapper::StringLocalizationFunctionWrapper()
    : function(&defaultFunction)
{ }

StringLocalizationFunctionWrapper::StringLocalizationFunctionWrapper(Function readingFunction)
    : function(std::move(readingFunction))
{ }

bool StringLocalizationFunctionWrapper::operator()(const QLocale &locale, const QString &text,
                                                   const int &type, QVariant &result) const
{
    return function(locale, text, type, result);
}

bool StringLocalizationFunctionWrapper::defaultFunction(const QLocale &, const QString &text, const int &type,
                                                        QVariant &result)
{
    Logging::FrameworkLog().warning()
        << "StringLocalizationFunctionWrapper::defaultFunction() called: " << text << " (" << type << ")";
    result = text;
    return result.convert(type);
}

StringLocalizationHelper::StringLocalizationHelper()
{
    for (int type : Conversion::GetDoubleConversionHelper().types())
        functions.insert(type, StringLocalizationFunctionWrapper(&ReadNumber));
}

bool StringLocalizationHelper::operator()(const QLocale &locale, const QString &text, const int &type,
                                          QVariant &result) const
{
    return functions.value(type)(locale, text, type, result);
}

QVariant LocalizeNumericString(const QLocale &locale, const QString &text, const int &type,
                               const QVariant &fallback)
{
    // Never destroyed: threads that outlive the static destructors may still convert.
    static const auto *const helper = new StringLocalizationHelper;
    QVariant result;
    return (*helper)(locale, text, type, result) ? result : fallback;
}

} // namespace Shared::Localization
