#include <appconfig/utils/ValueConversion.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QtTest>

#include <support/Literals.h>

using Tessellum::TessellumLocalizationInterfaceProvider;

class ValueConversionTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void convert_data()
    {
        QTest::addColumn<QString>("defaultLocale"); // empty: no localization at all
        QTest::addColumn<QString>("furtherLocale");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("metaType");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QVariant>("expected");

        const auto row = [](const char *name, const char *first, const char *further, const QVariant &value,
                            int metaType, bool ok, const QVariant &expected) {
            QTest::newRow(name) << QString(QLatin1String(first)) << QString(QLatin1String(further)) << value
                                << metaType << ok << expected;
        };
        const QVariant thousand = "1,000"_s;
        row("default locale", "de_DE", "", "1,5"_s, QMetaType::Double, true, 1.5);
        row("further locale", "de_DE", "en_US", "1.5"_s, QMetaType::Double, true, 1.5);
        row("group separator is no number", "en_US", "", thousand, QMetaType::Int, false, thousand);
        row("but a decimal point elsewhere", "en_US", "de_DE", thousand, QMetaType::Int, true, 1);
        row("groups of no locale", "de_DE", "en_US", "1.234,5"_s, QMetaType::Double, false, "1.234,5"_s);
        row("no number type", "de_DE", "", "ab"_s, QMetaType::QByteArray, true, QByteArray("ab"));
        row("no text", "de_DE", "", 5, QMetaType::QString, true, "5"_s);
        row("no localization", "", "", "1,5"_s, QMetaType::Double, false, QVariant());
        row("present type", "", "", thousand, QMetaType::QString, true, thousand);
        row("no type", "de_DE", "", thousand, QMetaType::UnknownType, false, thousand);
        row("invalid to no type", "", "", QVariant(), QMetaType::UnknownType, true, QVariant());
    }

    void convert()
    {
        QFETCH(QString, defaultLocale);
        QFETCH(QString, furtherLocale);
        QFETCH(QVariant, value);
        QFETCH(int, metaType);
        QFETCH(bool, ok);
        QFETCH(QVariant, expected);

        std::shared_ptr<TessellumLocalizationInterfaceProvider> localization;
        if (!defaultLocale.isEmpty())
            localization = std::make_shared<TessellumLocalizationInterfaceProvider>(QLocale(defaultLocale));
        if (!furtherLocale.isEmpty())
            localization->registerAdditionalLocale(QLocale(furtherLocale));

        QCOMPARE(Tessellum::AppConfig::utils::ConvertValue(value, localization, metaType), ok);
        if (ok || localization) {
            QCOMPARE(value.userType(), expected.userType());
            QCOMPARE(value, expected);
        }
    }
};

QTEST_GUILESS_MAIN(ValueConversionTest)

#include "ValueConversionTest.moc"
