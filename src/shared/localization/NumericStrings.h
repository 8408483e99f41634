#pragma once

#include <shared/TessellumExport.h>

#include <QHash>
#include <QLocale>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include <functional>

namespace Shared::Localization {

/*! Whether the type is one of the numbers 1 to 6 and 32 to 38 of QMetaType, bool among them. */
TESSELLUM_EXPORT bool IsArithmeticType(const QMetaType::Type &type);

/*! Reads a text under a locale into a QVariant of one type. Calling it is safe from any thread. */
class TESSELLUM_EXPORT StringLocalizationFunctionWrapper
{
public:
    /*! Takes locale, text, QMetaType number and result; returns whether the text could be read. */
    using Function = std::function<bool(const QLocale &, const QString &, const int &, QVariant &)>;

    /*! Holds defaultFunction. */
    StringLocalizationFunctionWrapper();
    explicit StringLocalizationFunctionWrapper(Function function);

    bool operator()(const QLocale &locale, const QString &text, const int &type, QVariant &result) const;

    /*! What stands in for a type without a row: logs a warning and leaves the text to QVariant::convert(). */
    static bool defaultFunction(const QLocale &locale, const QString &text, const int &type,
                                QVariant &result);

private:
    Function function;
};

/*! A reading function for each number type; built by the constructor and only read afterwards. */
class TESSELLUM_EXPORT StringLocalizationHelper
{
public:
    StringLocalizationHelper();

    /*! Reads the text as the type; false where it cannot be read, result is then without meaning. */
    bool operator()(const QLocale &locale, const QString &text, const int &type, QVariant &result) const;

private:
    QHash<int, StringLocalizationFunctionWrapper> functions;
};

/*!
 * The number that the text denotes under the locale, in the type of that QMetaType number and within its
 * limits; the fallback where the text is no number under this locale. Any thread.
 */
TESSELLUM_EXPORT QVariant LocalizeNumericString(const QLocale &locale, const QString &text, const int &type,
                                                const QVariant &fallback);

} // namespace Shared::Localization
