#pragma once

#include <shared/TessellumExport.h>

#include <QList>
#include <QLocale>
#include <QMutex>
#include <QObject>
#include <QStringList>
#include <QVector>

#include <memory>

namespace Shared::Localization {

namespace utils {
class ExchangeableTranslator;
}

/*!
 * Finds translations, files such as "Tessellum_de_DE.qm", and installs those of the current language on the
 * application object. Several loaders in a process follow each other: a language that one of them changes to,
 * the others take over. They agree by the properties "current_language" (QLocale) and "current_translators"
 * (QStringList) of the application object.
 *
 * Made, used and destroyed on the application's thread, while the application object exists;
 * getSupportedLocales() may be called from any thread, and all threads may translate meanwhile. Its mutex
 * guards its state, is held while translators are installed, and is taken on no other thread but by a
 * destructor.
 */
class TESSELLUM_EXPORT TranslationResourceLoader : public QObject
{
    Q_OBJECT

public:
    /*! Looks into \a directories for files named \a prefix, \a separator, a locale such as de_DE, \a suffix
     * and
     * ".qm"; loads none yet. */
    explicit TranslationResourceLoader(QObject *parent = nullptr,
                                       const QStringList &directories = {QStringLiteral(":/Translations")},
                                       const QString &prefix = QStringLiteral("Tessellum"),
                                       const QString &separator = QStringLiteral("_"),
                                       const QString &suffix = QString());
    /*! Takes the translators off the application object. */
    ~TranslationResourceLoader() override;

    /*! Loads the translations of the first supported locale with this language and country. False if there is
     * none, or it is the current one, or this is not the application's thread. */
    bool changeLanguage(const QLocale &locale);

    /*! The locales for which there are files, in the order of the directories. */
    QVector<QLocale> getSupportedLocales() const { return supportedLocales; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /*! The files of one directory, and what was installed from them. */
    struct Resource
    {
        QString directory;
        QString prefix;
        QString separator;
        QString suffix;
        std::shared_ptr<utils::ExchangeableTranslator> translator;
        bool installed = false;

        bool load(const QLocale &locale);
    };

    void scanTranslations();
    bool reloadTranslations(const QLocale &locale);
    /*! Installs what is not installed, and returns what is new in "current_translators". */
    QStringList loadResources(const QLocale &locale);

    QMutex mutex{QMutex::Recursive};
    bool destructing = false;
    bool initialized = false;
    QLocale currentLocale;
    QList<Resource> resources;
    QVector<QLocale> supportedLocales; // never changes after the constructor
};

} // namespace Shared::Localization
