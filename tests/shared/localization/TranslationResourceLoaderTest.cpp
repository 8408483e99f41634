#include <shared/localization/TranslationResourceLoader.h>

#include <QtTest>

#include <atomic>
#include <functional>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <thread>

using Shared::Localization::TranslationResourceLoader;

namespace {

/// Counts the changes of language that the application hears of.
class LanguageChanges : public QObject
{
public:
    LanguageChanges() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == qApp && event->type() == QEvent::LanguageChange) {
            ++count;
            if (reaction)
                reaction(event);
        }
        return false;
    }

    int count = 0;
    std::function<void(QEvent *)> reaction;
};

QString translated(const char *text)
{
    return QCoreApplication::translate("Meter", text);
}

QStringList translators()
{
    return qApp->property("current_translators").toStringList();
}

} // namespace

class TranslationResourceLoaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        qApp->setProperty("current_language", QVariant());
        qApp->setProperty("current_translators", QVariant());
        QCOMPARE(translated("voltage"), "voltage"_s);
    }

    void findsItsFiles()
    {
        QCOMPARE(TranslationResourceLoader().getSupportedLocales(), QVector<QLocale>({german, french}));
        const TranslationResourceLoader other(nullptr, {":/Translations", ":/More"}, "Other", "_", "_lab");
        QCOMPARE(other.getSupportedLocales(), QVector<QLocale>({french}));
        QVERIFY(TranslationResourceLoader(nullptr, {"/no/such/folder"}).getSupportedLocales().isEmpty());
    }

    void changesTheLanguage()
    {
        LanguageChanges changes;
        TranslationResourceLoader loader;
        QVERIFY(loader.changeLanguage(german));
        QCOMPARE(translated("voltage"), "Spannung"_s);
        QCOMPARE(qApp->property("current_language").toLocale(), german);
        QVERIFY(!loader.changeLanguage(german));
        QCOMPARE(changes.count, 1);

        QVERIFY(loader.changeLanguage(french));
        QCOMPARE(translated("voltage"), "tension"_s);
        QCOMPARE(translators(), QStringList(":/TranslationsTessellum_"));
        QCoreApplication::sendPostedEvents();
        QCOMPARE(changes.count, 2);
    }

    void refusesOtherCountriesAndThreads()
    {
        TranslationResourceLoader loader;
        TestSupport::LogCapture log;
        QVERIFY(!loader.changeLanguage(QLocale(QLocale::German, QLocale::Austria)));
        bool isChanged = true;
        std::thread([&] { isChanged = loader.changeLanguage(german); }).join();
        QVERIFY(!isChanged && !qApp->property("current_language").isValid());
        const auto line = "WARNING TranslationResourceLoader::changeLanguage() "_s;
        const auto countries = "found no supported locale with matching language German and country, no "
                               "language changed"_s;
        const auto threads = "called outside the application's thread, aborted"_s;
        QCOMPARE(log.lines(), QStringList({line + countries, line + threads}));
    }

    void loadersFollowEachOther()
    {
        TranslationResourceLoader first;
        TranslationResourceLoader second(nullptr, {":/More"}, "Other", "_", "_lab");
        QVERIFY(first.changeLanguage(german));
        QCOMPARE(translated("current"), "current"_s);
        QVERIFY(first.changeLanguage(french));
        QCOMPARE(translated("voltage"), "tension"_s);
        QCOMPARE(translated("current"), "courant"_s);
        QCOMPARE(translators(), QStringList({":/TranslationsTessellum_", ":/MoreOther__lab"}));
        QVERIFY(!second.changeLanguage(french));
    }

    void theApplicationMayAnswerWithAnotherLanguage()
    {
        LanguageChanges changes;
        TranslationResourceLoader loader(nullptr, {":/More", ":/Translations", ":/Translations"});
        changes.reaction = [&](QEvent *) { loader.changeLanguage(french); };
        QVERIFY(loader.changeLanguage(german));
        QCOMPARE(translated("voltage"), "tension"_s);
        QCOMPARE(translators().size(), 2);
        changes.reaction = nullptr;
        QVERIFY(!loader.changeLanguage(french));
        QVERIFY(loader.changeLanguage(german));
        QCOMPARE(translated("voltage"), "Spannung"_s);
    }

    void otherThreadsTranslateMeanwhile()
    {
        TranslationResourceLoader loader;
        QVERIFY(loader.changeLanguage(german));
        std::atomic<bool> ended{false};
        QStringList untranslated;
        std::thread translating([&] {
            while (!ended) {
                const QString text = translated("voltage");
                if (text != "Spannung"_s && text != "tension"_s)
                    untranslated.append(text);
            }
        });
        bool isChanged = true;
        for (int round = 0; round < 20000; ++round)
            isChanged = loader.changeLanguage(round % 2 == 0 ? french : german) && isChanged;
        ended = true;
        translating.join();
        QVERIFY(isChanged);
        QCOMPARE(untranslated, QStringList());
    }

    void nothingHappensDuringDestruction()
    {
        auto loader = std::make_unique<TranslationResourceLoader>();
        auto *const dying = loader.get();
        QVERIFY(dying->changeLanguage(german));
        LanguageChanges changes;
        TestSupport::LogCapture log;
        changes.reaction = [&](QEvent *event) {
            QVERIFY(!dying->changeLanguage(french));
            QVERIFY(!dying->eventFilter(qApp, event));
        };
        loader.reset();
        QCOMPARE(changes.count, 1);
        const auto line = "WARNING TranslationResourceLoader::%1() called during destruction, %2"_s;
        QCOMPARE(log.lines(),
                 QStringList({line.arg("changeLanguage", "aborted"), line.arg("eventFilter", "ignoring")}));
    }

private:
    const QLocale german{QLocale::German, QLocale::Germany};
    const QLocale french{QLocale::French, QLocale::France};
};

QTEST_GUILESS_MAIN(TranslationResourceLoaderTest)
#include "TranslationResourceLoaderTest.moc"
