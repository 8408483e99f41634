#include <shared/localization/DistinctLocalesCache.h>
#include <shared/localization/NumericStrings.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QtTest>

#include <support/Literals.h>
#include <support/LogCapture.h>

using namespace Shared::Localization;
using Tessellum::TessellumLocalizationInterfaceProvider;

class LocalizationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsUnderTheLocale()
    {
        const QLocale english(QLocale::English, QLocale::UnitedStates);
        const auto text = "1.234,5"_s;
        QCOMPARE(LocalizeNumericString(german, text, QMetaType::Double, QVariant()), QVariant(1234.5));
        QCOMPARE(LocalizeNumericString(english, text, QMetaType::Double, QVariant("fallback")),
                 QVariant("fallback"));
        QCOMPARE(LocalizeNumericString(german, QString(), QMetaType::Int, QVariant(7)), QVariant(7));
        QCOMPARE(LocalizeNumericString(german, "300", QMetaType::UChar, QVariant()),
                 QVariant::fromValue(uchar(255)));
    }

    void otherTypesAreLeftToTheVariant()
    {
        TestSupport::LogCapture log;
        QCOMPARE(LocalizeNumericString(QLocale::c(), "true"_s, QMetaType::Bool, QVariant()), QVariant(true));
        QCOMPARE(LocalizeNumericString(QLocale::c(), "x"_s, QMetaType::QPoint, QVariant(1)), QVariant(1));
        const auto line = "WARNING StringLocalizationFunctionWrapper::defaultFunction() called: "_s;
        QCOMPARE(log.lines(), QStringList({line + "true (1)", line + "x (25)"}));
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
        QCOMPARE(DistinctLocalesCache::getHashForLocale(locales.first()),
                 DistinctLocalesCache::getHashForLocale(QLocale::system()));
        QSet<QString> notations;
        for (const QLocale &locale : locales)
            notations.insert(DistinctLocalesCache::getHashForLocale(locale));
        QCOMPARE(notations.size(), locales.size());

        const auto all
            = QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
        QVERIFY(locales.size() < all.size() / 2);
        for (const QLocale &locale : all)
            QVERIFY2(notations.contains(DistinctLocalesCache::getHashForLocale(locale)),
                     qPrintable(locale.name()));
        QCOMPARE(DistinctLocalesCache::getHashForLocale(german), ",.-+0"_s);
    }

    void chosenLanguageComesFirst()
    {
        const auto &cache = DistinctLocalesCache::getInstance();
        const int known = cache.distinctLocales().size();
        const QLocale swiss(QLocale::German, QLocale::Switzerland);
        const auto reset = qScopeGuard([] { qApp->setProperty("current_language", QVariant()); });
        qApp->setProperty("current_language", swiss);
        QCOMPARE(cache.distinctLocales().first(), swiss);
        QCOMPARE(cache.distinctLocales().size(), known + 1);
        qApp->setProperty("current_language", 5);
        QCOMPARE(cache.distinctLocales().size(), known);
    }

private:
    const QLocale german{QLocale::German, QLocale::Germany};
};

QTEST_GUILESS_MAIN(LocalizationTest)
#include "LocalizationTest.moc"
