#include <shared/conversion/SiPrefix.h>
#include <shared/conversion/UnitParsing.h>

#include <QtTest>

#include <cmath>
#include <support/Literals.h>
#include <support/LogCapture.h>

using namespace Shared::Conversion::UnitConversion;

class SiPrefixTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPrefixHasItsTextsAndFactor()
    {
        const QStringList shortTexts = "Y Z E P T G M k h da  d c m µ n p f a z y"_s.split(' ');
        const QStringList longTexts
            = "yotta zetta exa peta tera giga mega kilo hecto deca  deci centi milli micro nano pico femto "
              "atto zepto yocto"_s.split(' ');
        const QVector<int> exponents{24, 21, 18, 15, 12, 9,   6,   3,   2,   1,  0,
                                     -1, -2, -3, -6, -9, -12, -15, -18, -21, -24};
        QCOMPARE(cvFullPrefixes.size(), 21);
        for (int number = 0; number < 21; ++number) {
            const auto prefix = static_cast<SiPrefix>(number);
            QCOMPARE(cvFullPrefixes.at(number), prefix);
            QCOMPARE(ConvertSiPrefixToString(prefix), shortTexts.at(number));
            QCOMPARE(ConvertSiPrefixToLongString(prefix), longTexts.at(number));
            bool ok = false;
            QCOMPARE(ParseStringToSiPrefix(shortTexts.at(number), SiPrefix::Exa, &ok), prefix);
            QVERIFY(ok);
            const double factor = QString("1e%1").arg(exponents.at(number)).toDouble();
            QCOMPARE(ConvertValueToTargetPrefix(1.0, prefix, SiPrefix::None), factor);
        }
        const QVector<int> defaults{4, 5, 6, 7, 10, 13, 14, 15, 16};
        for (int index = 0; index < defaults.size(); ++index)
            QCOMPARE(int(cvDefaultPrefixes.at(index)), defaults.at(index));
        QCOMPARE(cvDefaultPrefixes.size(), defaults.size());
        QVERIFY(QMetaType::type("Shared::Conversion::UnitConversion::SiPrefix") != QMetaType::UnknownType);
    }

    void unknownPrefixesAreHarmless()
    {
        const auto unknown = static_cast<SiPrefix>(21);
        QVERIFY(ConvertSiPrefixToString(unknown).isEmpty() && ConvertSiPrefixToLongString(unknown).isEmpty());
        QCOMPARE(ConvertValueToTargetPrefix(5, SiPrefix::Kilo, unknown), 5000.0);
        for (const QString &text : {"K"_s, "u"_s, "\u03bc"_s, "kk"_s, " "_s, "kilo"_s}) {
            bool ok = true;
            QCOMPARE(ParseStringToSiPrefix(text, SiPrefix::Pico, &ok), SiPrefix::Pico);
            QVERIFY(!ok);
            QCOMPARE(ParseStringToSiPrefix(text, SiPrefix::Pico, nullptr), SiPrefix::Pico);
        }
    }

    void bestPrefix_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("input");
        QTest::addColumn<QString>("enabled");
        QTest::addColumn<double>("adjusted");
        QTest::addColumn<int>("prefix");
        QTest::addColumn<bool>("found");
        auto row = [number = 0](double value, int input, const char *enabled, double adjusted, int prefix,
                                bool found) mutable {
            QTest::addRow("%d: %g", ++number, value)
                << value << input << QString(enabled) << adjusted << prefix << found;
        };
        const double infinity = std::numeric_limits<double>::infinity();
        row(1000, 10, "k M", 1, 7, true);
        row(999, 10, "k M", 999, 10, false);
        row(999999, 10, "k M", 999.999, 7, true);
        row(-1234567, 10, "default", -1.234567, 6, true);
        row(0.005, 10, "default", 5, 13, true);
        row(0.5, 10, "default", 0.5, 10, false);
        row(0.5, 10, "full", 5, 11, true);
        row(25, 10, "full", 2.5, 9, true);
        row(5, 7, "default", 5, 7, false);
        row(2.5e6, 13, "default", 2.5, 7, true);
        row(5e-7, 7, "default", 500, 14, true);
        row(5e-4, 7, "m", 5e-4, 7, false);
        row(0.5, 7, "M", 0.5, 7, false);
        row(1e30, 10, "full", 1e6, 0, true);
        row(5, 0, "full", 5, 0, false);
        row(500, 0, "full", 500, 0, false);
        row(0.5, 20, "full", 0.5, 20, false);
        row(0, 7, "m", 0, 7, true);
        row(1e-12, 10, "full", 1e-12, 10, true);
        row(1.1e-12, 10, "full", 1.1, 16, true);
        row(infinity, 7, "full", infinity, 7, true);
        row(-infinity, 7, "full", -infinity, 7, true);
        row(1500, 99, "default", 1.5, 7, true);
    }

    void bestPrefix()
    {
        QFETCH(QString, enabled);
        QVector<SiPrefix> prefixes = enabled == "full" ? cvFullPrefixes : cvDefaultPrefixes;
        if (enabled != "full" && enabled != "default") {
            prefixes.clear();
            for (const QString &text : enabled.split(' '))
                prefixes.append(ParseStringToSiPrefix(text, SiPrefix::None, nullptr));
        }
        QFETCH(double, value);
        QFETCH(int, input);
        double adjusted = 0;
        SiPrefix prefix = SiPrefix::None;
        QTEST(AdjustSignificantDigits(value, static_cast<SiPrefix>(input), prefixes, adjusted, prefix),
              "found");
        QTEST(adjusted, "adjusted");
        QTEST(int(prefix), "prefix");
    }

    void notANumberKeepsItsPrefix()
    {
        double adjusted = 0;
        SiPrefix prefix = SiPrefix::None;
        QVERIFY(AdjustSignificantDigits(std::nan(""), SiPrefix::Mega, cvFullPrefixes, adjusted, prefix));
        QVERIFY(std::isnan(adjusted) && prefix == SiPrefix::Mega);
    }

    void splitsPrefixes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("remainder");
        QTest::addColumn<QString>("unitPrefix");
        QTest::addColumn<QString>("unit");
        const auto row = [](const QString &text, const char *prefix, const char *remainder,
                            const char *unitPrefix, const char *unit) {
            QTest::newRow(qPrintable("'%1'"_s.arg(text)))
                << text << QString(prefix) << QString(remainder) << QString(unitPrefix) << QString(unit);
        };
        row("", "", "", "", "");
        row("mm", "m", "m", "m", "m");
        row("m", "m", "", "", "m");
        row("da", "da", "", "d", "a");
        row("dag", "da", "g", "da", "g");
        row("Pa", "P", "a", "P", "a");
        row("kg", "k", "g", "k", "g");
        row("Hz", "", "Hz", "", "Hz");
        row("µs", "µ", "s", "µ", "s");
        row("us", "", "us", "", "us");
    }

    void splitsPrefixes()
    {
        QFETCH(QString, text);
        SiPrefix prefix = SiPrefix::Yocto;
        QString rest;
        ParseStringToSiPrefixAndRemainder(text, prefix, rest);
        QTEST(ConvertSiPrefixToString(prefix), "prefix");
        QTEST(rest, "remainder");
        QVERIFY(ParseStringToSiPrefixAndUnit(text, prefix, rest));
        QTEST(ConvertSiPrefixToString(prefix), "unitPrefix");
        QTEST(rest, "unit");
    }

    void readsValuePrefixAndUnit_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("unit");
        const auto row = [](const QString &text, double value, const char *prefix, const char *unit) {
            QTest::newRow(qPrintable(text.simplified())) << text << value << QString(prefix) << QString(unit);
        };
        row("1,5 kHz", 1.5, "k", "Hz");
        row(" 1 2 \t.\u00a05\nk Hz", 12.5, "k", "Hz");
        row("12e3V", 12000, "", "V");
        row("12EV", 12, "E", "V");
        row("1.5.2", 1.5, "", ".2");
        row("-5", -5, "", "");
        row("5 m", 5, "", "m");
        row("1’000.5 mV", 1000.5, "m", "V");
        row("٣٫٥ kV", 3.5, "k", "V");
    }

    void readsValuePrefixAndUnit()
    {
        QFETCH(QString, text);
        TestSupport::LogCapture log;
        double value = 0;
        SiPrefix prefix = SiPrefix::Yocto;
        QString unit;
        QVERIFY(ParseStringToSiPrefixUnitAndValue(text, value, &prefix, &unit));
        QTEST(value, "value");
        QTEST(ConvertSiPrefixToString(prefix), "prefix");
        QTEST(unit, "unit");
        QVERIFY(ParseStringToSiPrefixUnitAndValue(text, value, nullptr, nullptr));
        QCOMPARE(log.lines(), QStringList());
    }

    void tellsWhatHasNoNumber()
    {
        for (const QString &text : {""_s, "kHz"_s, " -V"_s}) {
            TestSupport::LogCapture log;
            double value = 7;
            QVERIFY(!ParseStringToSiPrefixUnitAndValue(text, value, nullptr, nullptr));
            QCOMPARE(value, 7.0);
            QCOMPARE(
                log.lines(),
                QStringList(
                    "WARNING UnitConversion::ConvertStringToSiPrefixUnitAndValue() the provided input: "_s
                    + text + " does not contain a valid double value"));
        }
    }

    void readsValueAndRemainder()
    {
        double value = 7;
        QString remainder;
        QVERIFY(ParseStringToValueAndRemainder(" 1,5  kHz "_s, value, remainder));
        QCOMPARE(value, 1.5);
        QCOMPARE(remainder, "kHz "_s);
        QVERIFY(ParseStringToValueAndRemainder("5\t "_s, value, remainder));
        QCOMPARE(remainder, ""_s);
        for (const QString &text : {""_s, " x5"_s}) {
            QVERIFY(!ParseStringToValueAndRemainder(text, value, remainder));
            QCOMPARE(value, 0.0);
            QCOMPARE(remainder, text);
        }
    }
};

QTEST_GUILESS_MAIN(SiPrefixTest)
#include "SiPrefixTest.moc"
