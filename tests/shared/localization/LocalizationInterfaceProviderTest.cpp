#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QtTest>

using Tessellum::TessellumLocalizationInterfaceProvider;

class LocalizationInterfaceProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultIsNotRegistered();
    void registeringTwiceKeepsTheLater();
    void bothInterfacesSeeTheSameRegistry();
};

void LocalizationInterfaceProviderTest::defaultIsNotRegistered()
{
    const QLocale german(QLocale::German, QLocale::Germany);
    TessellumLocalizationInterfaceProvider registry(german);
    QVERIFY(!registry.isLocaleRegistered(german));
    QVERIFY(registry.getRegisteredLocales().isEmpty());
    registry.registerAdditionalLocale(german);
    QVERIFY(registry.isLocaleRegistered(german));
    QVERIFY(registry.isLocaleRegistered(QStringLiteral("de_DE")));
}

void LocalizationInterfaceProviderTest::registeringTwiceKeepsTheLater()
{
    TessellumLocalizationInterfaceProvider registry;
    QLocale later(QLocale::German, QLocale::Germany);
    later.setNumberOptions(QLocale::RejectGroupSeparator);
    registry.registerAdditionalLocale(QLocale(QLocale::German, QLocale::Germany));
    registry.registerAdditionalLocale(QLocale(QLocale::Arabic, QLocale::Egypt));
    registry.registerAdditionalLocale(later);
    const auto locales = registry.getRegisteredLocales();
    QCOMPARE(locales.size(), 2);
    QCOMPARE(locales.at(0).name(), QStringLiteral("ar_EG"));
    QCOMPARE(locales.at(1).numberOptions(), QLocale::NumberOptions(QLocale::RejectGroupSeparator));
}

void LocalizationInterfaceProviderTest::bothInterfacesSeeTheSameRegistry()
{
    TessellumLocalizationInterfaceProvider registry(QLocale::c());
    Tessellum::Core::CoreLocalizationInterface &core = registry;
    const Shared::Localization::LocalizationInterface &shared = registry;
    const QLocale german(QLocale::German, QLocale::Germany);
    core.setDefaultLocale(german);
    core.registerAdditionalLocale(german);
    QCOMPARE(shared.defaultLocale(), german);
    QCOMPARE(core.defaultLocale(), german);
    QVERIFY(shared.isLocaleRegistered(german));
}

QTEST_GUILESS_MAIN(LocalizationInterfaceProviderTest)
#include "LocalizationInterfaceProviderTest.moc"
