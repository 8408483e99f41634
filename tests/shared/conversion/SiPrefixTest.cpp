#include <shared/conversion/SiPrefix.h>
#include <shared/conversion/UnitParsing.h>

#include <QtTest>

#include <cmath>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <tuple>

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
        const QStringList exponents
            = "24 21 18 15 12 9 6 3 2 1 0 -1 -2 -3 -6 -9 -12 -15 -18 -21 -24"_s.split(' ');
        QCOMPARE(cvFullPrefixes.size(), 21);
        for (int number = 0; number < 21; ++number) {
            const auto prefix = static_cast<SiPrefix>(number);
            QCOMPARE(cvFullPrefixes.at(number), prefix);
            QCOMPARE(ConvertSiPrefixToString(prefix), shortTexts.at(number));
            QCOMPARE(ConvertSiPrefixToLongString(prefix), longTexts.at(number));
            bool ok = false;
            QCOMPARE(ParseStringToSiPrefix(shortTexts.at(number), SiPrefix::Exa, &ok), prefix);
            QVERIFY(ok);
            QCOMPARE(ConvertValueToTargetPrefix(1.0, prefix, SiPrefix::None),
                     ("1e" + exponents.at(number)).toDouble());
        }
        QString defaults;
        for (const SiPrefix prefix : cvDefaultPrefixes)
            defaults += ConvertSiPrefixToString(prefix) + '|';
        QCOMPARE(defaults, "T|G|M|k||m|µ|n|p|"_s);
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
        }
    }

    void choosesTheBestPrefix()
    {
        const QVector<SiPrefix> kiloAndMega{SiPrefix::Kilo, SiPrefix::Mega};
        const QVector<SiPrefix> milli{SiPrefix::Milli};
        const QVector<SiPrefix> &full = cvFullPrefixes;
        const QVector<SiPrefix> &usual = cvDefaultPrefixes;
        // value, its prefix, the enabled ones; what comes out, its prefix, whether an enabled one was met
        const std::tuple<double, int, QVector<SiPrefix>, double, int, bool> rows[]
            = {{1000, 10, kiloAndMega, 1, 7, true},
               {999, 10, kiloAndMega, 999, 10, false},
               {999999, 10, kiloAndMega, 999.999, 7, true},
               {-1234567, 10, usual, -1.234567, 6, true},
               {0.005, 10, usual, 5, 13, true},
               {0.5, 10, usual, 0.5, 10, false},
               {0.5, 10, full, 5, 11, true},
               {25, 10, full, 2.5, 9, true},
               {5, 7, usual, 5, 7, false},
               {2.5e6, 13, usual, 2.5, 7, true},
               {5e-7, 7, usual, 500, 14, true},
               {5e-4, 7, milli, 5e-4, 7, false},
               {1e30, 10, full, 1e6, 0, true},
               {500, 0, full, 500, 0, false},
               {0.5, 20, full, 0.5, 20, false},
               {0, 7, milli, 0, 7, true},
               {1e-12, 10, full, 1e-12, 10, true},
               {1.1e-12, 10, full, 1.1, 16, true},
               {-HUGE_VAL, 7, full, -HUGE_VAL, 7, true},
               {1500, 99, usual, 1.5, 7, true},
               {std::nan(""), 6, full, std::nan(""), 6, true}};
        for (const auto &[value, input, enabled, expected, expectedPrefix, expectedFound] : rows) {
            double adjusted = 0;
            SiPrefix prefix = SiPrefix::None;
            const bool found
                = AdjustSignificantDigits(value, static_cast<SiPrefix>(input), enabled, adjusted, prefix);
            const auto row = QString::asprintf("%g in %d: ", value, input);
            QCOMPARE(row + QString::asprintf("%g in %d, %d", adjusted, int(prefix), found),
                     row + QString::asprintf("%g in %d, %d", expected, expectedPrefix, expectedFound));
        }
    }

    void splitsPrefixes()
    {
        const QStringList rows[] = {
            // the text, its prefix and remainder, its prefix and unit
            {"", "", "", "", ""},       {"mm", "m", "m", "m", "m"},    {"m", "m", "", "", "m"},
            {"da", "da", "", "d", "a"}, {"dag", "da", "g", "da", "g"}, {"Pa", "P", "a", "P", "a"},
            {"kg", "k", "g", "k", "g"}, {"Hz", "", "Hz", "", "Hz"},    {"µs", "µ", "s", "µ", "s"},
            {"us", "", "us", "", "us"},
        };
        for (const QStringList &row : rows) {
            SiPrefix prefix = SiPrefix::Yocto;
            SiPrefix unitPrefix = SiPrefix::Yocto;
            QString remainder;
            QString unit;
            ParseStringToSiPrefixAndRemainder(row.first(), prefix, remainder);
            QVERIFY(ParseStringToSiPrefixAndUnit(row.first(), unitPrefix, unit));
            const QStringList told{row.first(), ConvertSiPrefixToString(prefix), remainder,
                                   ConvertSiPrefixToString(unitPrefix), unit};
            QCOMPARE(told.join('|'), row.join('|'));
        }
    }

    void readsValuePrefixAndUnit()
    {
        const QStringList rows[] = {
            // the text, its value, prefix and unit
            {"1,5 kHz", "1.5", "k", "Hz"}, {" 1 2 \t.\u00a05\nk Hz", "12.5", "k", "Hz"},
            {"12e3V", "12000", "", "V"},   {"12EV", "12", "E", "V"},
            {"1.5.2", "1.5", "", ".2"},    {"-5", "-5", "", ""},
            {"5 m", "5", "", "m"},         {"1’000.5 mV", "1000.5", "m", "V"},
            {"٣٫٥ kV", "3.5", "k", "V"},
        };
        TestSupport::LogCapture log;
        for (const QStringList &row : rows) {
            double value = 0;
            SiPrefix prefix = SiPrefix::Yocto;
            QString unit;
            QVERIFY(ParseStringToSiPrefixUnitAndValue(row.first(), value, &prefix, &unit));
            const QStringList told{row.first(), QString::number(value), ConvertSiPrefixToString(prefix),
                                   unit};
            QCOMPARE(told.join('|'), row.join('|'));
            QVERIFY(ParseStringToSiPrefixUnitAndValue(row.first(), value, nullptr, nullptr));
        }
        QCOMPARE(log.lines(), QStringList());
    }

    void tellsWhatHasNoNumber()
    {
        for (const QString &text : {""_s, "kHz"_s, " -V"_s}) {
            TestSupport::LogCapture log;
            double value = 7;
            QVERIFY(!ParseStringToSiPrefixUnitAndValue(text, value, nullptr, nullptr));
            QCOMPARE(value, 7.0);
            const auto line = "WARNING UnitConversion::ConvertStringToSiPrefixUnitAndValue() the provided "
                              "input: %1 does not contain a valid double value"_s;
            QCOMPARE(log.lines(), QStringList(line.arg(text)));
        }
    }

    void readsValueAndRemainder()
    {
        double value = 7;
        QString remainder;
        QVERIFY(ParseStringToValueAndRemainder(" 1,5  kHz "_s, value, remainder));
        QVERIFY(value == 1.5 && remainder == "kHz ");
        QVERIFY(ParseStringToValueAndRemainder("5\t "_s, value, remainder));
        QVERIFY(value == 5 && remainder.isEmpty());
        for (const QString &text : {""_s, " x5"_s}) {
            QVERIFY(!ParseStringToValueAndRemainder(text, value, remainder));
            QVERIFY(value == 0 && remainder == text);
        }
    }
};

QTEST_GUILESS_MAIN(SiPrefixTest)
#include "SiPrefixTest.moc"
