#include <shared/conversion/DoubleConversion.h>
#include <shared/conversion/TimeStringConversion.h>
#include <shared/localization/DistinctLocalesCache.h>
#include <shared/localization/NumericStrings.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QtTest>

#include <cmath>
#include <limits>
#include <support/Literals.h>
#include <support/LogCapture.h>

using Shared::Conversion::ConvertDouble;
using Shared::Conversion::TimeStringConversion;
using namespace Shared::Localization;
using Tessellum::TessellumLocalizationInterfaceProvider;

namespace {

template <class T>
void CheckLimits(T lowest, T highest)
{
    const int type = qMetaTypeId<T>();
    const double largest = std::numeric_limits<double>::max();
    for (double value : {-largest, -HUGE_VAL, double(lowest)}) {
        QCOMPARE(ConvertDouble(type, value), QVariant::fromValue(lowest));
        QCOMPARE(ConvertDouble(type, value).userType(), type);
    }
    // The highest as a double is the first value beyond the type for the 64 bit types.
    for (double value : {largest, HUGE_VAL, double(highest)})
        QCOMPARE(ConvertDouble(type, value), QVariant::fromValue(highest));
    if (type != QMetaType::Float) {
        QCOMPARE(ConvertDouble(type, 99.9), QVariant::fromValue(T(99)));
        QCOMPARE(ConvertDouble(type, -0.9).toInt(), 0);
    }
}

} // namespace

/*! Numbers of the types, durations, and numbers under locales. */
class ConversionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void convertsWithinTheLimitsOfTheType()
    {
        CheckLimits<char>(-128, 127);
        CheckLimits<unsigned char>(0, 255);
        CheckLimits<short>(-32768, 32767);
        CheckLimits<unsigned short>(0, 65535);
        CheckLimits<int>(-2147483647 - 1, 2147483647);
        CheckLimits<unsigned int>(0, 4294967295U);
        CheckLimits<long>(-2147483648L, 2147483647);
        CheckLimits<unsigned long>(0, 4294967295U);
        CheckLimits(std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max());
        CheckLimits(0ULL, std::numeric_limits<unsigned long long>::max());
        CheckLimits(-std::numeric_limits<float>::max(), std::numeric_limits<float>::max());
        QCOMPARE(ConvertDouble(QMetaType::Double, HUGE_VAL).toDouble(), std::numeric_limits<double>::max());
        // What is no number is zero only where it has no form.
        const double nan = std::nan("");
        QCOMPARE(ConvertDouble(QMetaType::Int, nan), QVariant(0));
        QCOMPARE(ConvertDouble(QMetaType::ULongLong, nan), QVariant(0ULL));
        QVERIFY(std::isnan(ConvertDouble(QMetaType::Double, nan).toDouble()));
        QVERIFY(std::isnan(ConvertDouble(QMetaType::Float, nan).toFloat()));
    }

    void durationsAreANumberAndAUnit()
    {
        QStringList told;
        for (const QString &text : "90|3.|2a|1d|1.5h|1m|2 \t ms|5us|5ns|5ps"_s.split('|'))
            told.append(QString::number(TimeStringConversion(text).toSeconds()));
        QCOMPARE(told.join(' '), "90 3 6.31152e+07 86400 5400 60 0.002 5e-06 5e-09 5e-12"_s);
    }

    void whatIsNoDurationIsRefused()
    {
        const auto expectLine = [](const QString &text, const QString &line) {
            TestSupport::LogCapture log;
            QVERIFY(!TimeStringConversion(text).isValid());
            QCOMPARE(log.lines(),
                     QStringList("WARNING TimeStringConversion::parseTimeString() can not " + line + text));
        };
        for (const char *text : {"", "-1s", ".5s", "1,5s", "5x", "s", "1 s ", " 1s", "1msx", "1S"})
            expectLine(text, "parse the provided duration=");
        expectLine("\u0663s", "convert the provided duration value="); // an Arabic-Indic digit
    }

    void tellsADurationInEachUnit()
    {
        TimeStringConversion duration("1.5d"_s);
        QStringList told;
        for (double number :
             {duration.toYears(), duration.toDays(), duration.toHours(), duration.toMinutes(),
              duration.toSeconds(), duration.toMilliSeconds(), duration.toMicroSeconds(),
              duration.toNanoSeconds(), duration.toPicoSeconds(), duration.convertParsedSecondsToUnit("x"_s)})
            told.append(QString::number(number));
        QCOMPARE(told.join(' '),
                 "0.00410678 1.5 36 2160 129600 1.296e+08 1.296e+11 1.296e+14 1.296e+17 129600"_s);
        QVERIFY(!duration.parseTimeString("soon"_s));
        QCOMPARE(duration.toSeconds(), 0.0);
    }

    void readsUnderTheLocale()
    {
        const QLocale english(QLocale::English, QLocale::UnitedStates);
        const auto text = "1.234,5"_s;
        QCOMPARE(LocalizeNumericString(german, text, QMetaType::Double, {}), QVariant(1234.5));
        QCOMPARE(LocalizeNumericString(english, text, QMetaType::Double, "other"), QVariant("other"));
        QCOMPARE(LocalizeNumericString(german, {}, QMetaType::Int, 7), QVariant(7));
        QCOMPARE(LocalizeNumericString(german, "300", QMetaType::UChar, {}), QVariant::fromValue(uchar(255)));
    }

    void otherTypesAreToldAndLeftToTheVariant()
    {
        TestSupport::LogCapture log;
        QVERIFY(!ConvertDouble(QMetaType::Bool, 1.0).isValid());
        QCOMPARE(LocalizeNumericString(QLocale::c(), "true"_s, QMetaType::Bool, QVariant()), QVariant(true));
        QCOMPARE(LocalizeNumericString(QLocale::c(), "x"_s, QMetaType::QPoint, QVariant(1)), QVariant(1));
        const auto line = "WARNING StringLocalizationFunctionWrapper::defaultFunction() called: "_s;
        QCOMPARE(log.lines(),
                 QStringList({"WARNING DoubleConversionFunctionWrapper::defaultConvert() called!",
                              line + "true (1)", line + "x (25)"}));
    }

    void registeringTwiceKeepsTheLater()
    {
        TessellumLocalizationInterfaceProvider registry;
        QLocale later(german);
        later.setNumberOptions(QLocale::RejectGroupSeparator);
        registry.registerAdditionalLocale(german);
        registry.registerAdditionalLocale(QLocale(QLocale::Arabic, QLocale::Egypt));
        registry.registerAdditionalLocale(later);
        const auto locales = registry.getRegisteredLocales();
        QCOMPARE(locales.size(), 2);
        QCOMPARE(locales.at(0).name(), "ar_EG"_s);
        QCOMPARE(locales.at(1).numberOptions(), QLocale::NumberOptions(QLocale::RejectGroupSeparator));
    }

    void everyNotationOnce()
    {
        const auto locales = DistinctLocalesCache().distinctLocales();
        QSet<QString> notations;
        for (const QLocale &locale : locales)
            notations.insert(DistinctLocalesCache::getHashForLocale(locale));
        QCOMPARE(notations.size(), locales.size());
        const auto all
            = QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
        for (const QLocale &locale : all)
            QVERIFY2(notations.contains(DistinctLocalesCache::getHashForLocale(locale)),
                     qPrintable(locale.name()));
        QCOMPARE(DistinctLocalesCache::getHashForLocale(german), ",.-+0"_s);
    }

private:
    const QLocale german{QLocale::German, QLocale::Germany};
};

QTEST_GUILESS_MAIN(ConversionTest)
#include "ConversionTest.moc"
