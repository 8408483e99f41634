#include <shared/localization/DistinctLocalesCache.h>

#include <QtTest>

using Shared::Localization::DistinctLocalesCache;

class DistinctLocalesCacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyNotationOnce();
    void chosenLanguageComesFirst();
};

void DistinctLocalesCacheTest::everyNotationOnce()
{
    const auto locales = DistinctLocalesCache().distinctLocales();
    QCOMPARE(DistinctLocalesCache::getHashForLocale(locales.first()),
             DistinctLocalesCache::getHashForLocale(QLocale::system()));
    QSet<QString> notations;
    for (const QLocale &locale : locales)
        notations.insert(DistinctLocalesCache::getHashForLocale(locale));
    QCOMPARE(notations.size(), locales.size());

    const auto all = QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    QVERIFY(locales.size() < all.size() / 2);
    for (const QLocale &locale : all)
        QVERIFY2(notations.contains(DistinctLocalesCache::getHashForLocale(locale)),
                 qPrintable(locale.name()));
    QCOMPARE(DistinctLocalesCache::getHashForLocale(QLocale(QLocale::German, QLocale::Germany)),
             QStringLiteral(",.-+0"));
}

void DistinctLocalesCacheTest::chosenLanguageComesFirst()
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

QTEST_GUILESS_MAIN(DistinctLocalesCacheTest)
#include "DistinctLocalesCacheTest.moc"
