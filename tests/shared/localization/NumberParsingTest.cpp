#include <shared/localization/NumberParsing.h>

#include <QtTest>

#include <cmath>
#include <cstring>
#include <support/Literals.h>
#include <support/LongestNumber.h>
#include <tuple>

using namespace Shared::Localization;

class NumberParsingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWholeTextsInAnyNotation()
    {
        double value = 7;
        for (const QString &text : {""_s, " "_s, "1.5.2"_s, "5V"_s, "1e999"_s}) {
            QVERIFY(!ParseNumber(text, value));
            QCOMPARE(value, 7.0);
        }
        for (const QString &text : {"1234.5"_s, "1.234,5"_s, "1234,5"_s, " 1’234.5 "_s, "١٬٢٣٤٫٥"_s,
                                    "1\u202f234,5"_s, "१,२३४.५"_s}) {
            QVERIFY2(ParseNumber(text, value), qPrintable(text));
            QCOMPARE(value, 1234.5);
        }
        QVERIFY(ParseNumber("1,234"_s, value));
        QCOMPARE(value, 1234.0);
        const auto reset = qScopeGuard([] { qApp->setProperty("current_language", QVariant()); });
        qApp->setProperty("current_language", QLocale(QLocale::German, QLocale::Germany));
        QVERIFY(ParseNumber("1,234"_s, value));
        QCOMPARE(value, 1.234);
        qApp->setProperty("current_language", 5);
        QVERIFY(ParseNumber("1,234"_s, value));
        QCOMPARE(value, 1234.0);
    }

    void takesWhatTryingEachLengthTakes()
    {
        QLocale strict(QLocale::English, QLocale::UnitedStates);
        strict.setNumberOptions(QLocale::RejectGroupSeparator | QLocale::RejectLeadingZeroInExponent
                                | QLocale::RejectTrailingZeroesAfterDot);
        const auto reset = qScopeGuard([] { qApp->setProperty("current_language", QVariant()); });
        const QStringList pieces
            = "0|1|99|000|123|.|,|e|E|+|-|e-|32|08|inf|naN| |\u2212|\u2019|\u202f|\u00a0|٣|٫|٬|,34,|,567|V|i"_s
                  .split('|')
            << QString(306, '7');
        QRandomGenerator random(1);
        for (int run = 0; run < 3000; ++run) {
            qApp->setProperty("current_language", run % 2 ? strict : QLocale::c());
            QString text;
            for (int piece = random.bounded(1, 8); piece > 0; --piece)
                text += pieces.at(random.bounded(pieces.size()));
            double expected = 0;
            double value = 0;
            const int length = TestSupport::longestNumber(text, expected);
            QVERIFY2(ParseLeadingNumber(text, value) == length, qPrintable(text));
            QVERIFY2(std::memcmp(&value, &expected, sizeof value) == 0, qPrintable(text));
        }
    }

    void longTextsTakeLinearTime()
    {
        constexpr int many = 1000000;
        const std::tuple<const char *, QString, int, double> rows[] = {
            {"useless text", "1.5"_s + QString(many, 'x'), 3, 1.5},
            {"blanks", QString(many, ' '), 0, 0.0},
            {"zeros", QString(many, '0') + ",1", many + 2, 0.1},
            {"too large", QString(many, '9'), 308, 1e308},
            {"Arabic digits", QString(many, QChar(0x661)), 309, 1e308 / 0.9},
            {"too small", "0." + QString(many, '0') + '1', many + 2, 0.0},
            {"next to too small", "0." + QString(323, '0') + "2" + QString(many, '4'), 325, 0.0},
            {"exponent", "1e" + QString(many, '0') + "999", many + 4, 1e99},
            {"next to too large", QString(309, '1') + "e" + QString(many, '0'), many + 310, 1e308 / 0.9},
            {"balanced", "0." + QString(many, '0') + "1e1000002" + QString(many, '9'), many + 11, 10.0},
        };
        for (const auto &[name, text, length, value] : rows) {
            double number = 0;
            QVERIFY2(ParseLeadingNumber(text, number) == length, name);
            QVERIFY2(number == value || qFuzzyCompare(number, value), name);
        }
    }
};

QTEST_GUILESS_MAIN(NumberParsingTest)
#include "NumberParsingTest.moc"
