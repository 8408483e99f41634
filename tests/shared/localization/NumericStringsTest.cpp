#include <shared/localization/NumericStrings.h>

#include <QtTest>

#include <support/LogCapture.h>

using namespace Shared::Localization;

class NumericStringsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsUnderTheLocale();
    void clampsToTheType();
    void otherTypesAreLeftToTheVariant();
    void arithmeticTypes();
};

void NumericStringsTest::readsUnderTheLocale()
{
    const QLocale german(QLocale::German, QLocale::Germany);
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const auto text = QStringLiteral("1.234,5");
    QCOMPARE(LocalizeNumericString(german, text, QMetaType::Double, QVariant()), QVariant(1234.5));
    QCOMPARE(LocalizeNumericString(english, text, QMetaType::Double, QVariant("fallback")),
             QVariant("fallback"));
    QCOMPARE(LocalizeNumericString(german, QString(), QMetaType::Int, QVariant(7)), QVariant(7));
}

void NumericStringsTest::clampsToTheType()
{
    const QVariant number
        = LocalizeNumericString(QLocale::c(), QStringLiteral("300"), QMetaType::UChar, QVariant());
    QCOMPARE(number.userType(), int(QMetaType::UChar));
    QCOMPARE(number.toInt(), 255);
}

void NumericStringsTest::otherTypesAreLeftToTheVariant()
{
    TestSupport::LogCapture log;
    QCOMPARE(LocalizeNumericString(QLocale::c(), QStringLiteral("true"), QMetaType::Bool, QVariant()),
             QVariant(true));
    QCOMPARE(LocalizeNumericString(QLocale::c(), QStringLiteral("x"), QMetaType::QPoint, QVariant(1)),
             QVariant(1));
    const auto line = QStringLiteral("WARNING StringLocalizationFunctionWrapper::defaultFunction() called: ");
    QCOMPARE(log.lines(), QStringList({line + "true (1)", line + "x (25)"}));
}

void NumericStringsTest::arithmeticTypes()
{
    for (int type = 0; type < 64; ++type) {
        const bool expected = (type >= 1 && type <= 6) || (type >= 32 && type <= 38);
        QCOMPARE(IsArithmeticType(QMetaType::Type(type)), expected);
    }
}

QTEST_GUILESS_MAIN(NumericStringsTest)
#include "NumericStringsTest.moc"
