#include <shared/localization/TranslationResourceLoader.h>
#include <shared/localization/utils/ExchangeableTranslator.h>
#include <shared/logging/FrameworkLog.h>

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QThread>
#include <QTranslator>
#include <QVariant>

#include <algorithm>
#include <utility>

namespace Shared::Localization {

namespace {

constexpr const char *languageProperty = "current_language";
constexpr const char *translatorsProperty = "current_translators";

bool isApplicationThread()
{
    const QCoreApplication *const application = QCoreApplication::instance();
    return application && application->thread() == QThread::currentThread();
}

} // namespace

TranslationResourceLoader::TranslationResourceLoader(QObject *parent, const QStringList &directories,
                                                     const QString &prefix, const QString &separator,
                                                     const QString &suffix)
    : QObject(parent)
{
    for (const QString &directory : directories)
        resources.append({directory, prefix, separator, suffix, nullptr, false});
    scanTranslations();
    if (isApplicationThread())
        QCoreApplication::instance()->installEventFilter(this);
}

TranslationResourceLoader::~TranslationResourceLoader()
{
    const QMutexLocker locker(&mutex);
    destructing = true;
    if (!QCoreApplication::instance())
        return;
    QCoreApplication::instance()->removeEventFilter(this);
    for (const Resource &resource : qAsConst(resources)) {
        if (resource.installed)
            QCoreApplication::removeTranslator(resource.translator.get());
    }
}

bool TranslationResourceLoader::changeLanguage(const QLocale &locale)
{
    // A translator is told to the application at once, on this thread, where other loaders hear it: two
    // threads would wait for each other's mutex.
    if (!isApplicationThread()) {
        Logging::FrameworkLog().warning()
            << "TranslationResourceLoader::changeLanguage() called outside the application's thread, aborted";
        return false;
    }
    const QMutexLocker locker(&mutex);
    if (destructing) {
        Logging::FrameworkLog().warning()
            << "TranslationResourceLoader::changeLanguage() called during destruction, aborted";
        return false;
    }
    const bool isSupported
        = std::any_of(supportedLocales.begin(), supportedLocales.end(), [&locale](const QLocale &supported) {
              return supported.language() == locale.language() && supported.country() == locale.country();
          });
    if (!isSupported) {
        Logging::FrameworkLog().warning()
            << "TranslationResourceLoader::changeLanguage() found no supported locale with matching language "
            << QLocale::languageToString(locale.language()) << " and country, no language changed";
        return false;
    }
    QCoreApplication::instance()->setProperty(languageProperty, locale);
    return reloadTranslations(locale);
}

bool TranslationResourceLoader::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != QCoreApplication::instance() || event->type() != QEvent::LanguageChange)
        return false;
    const QMutexLocker locker(&mutex);
    if (destructing) {
        Logging::FrameworkLog().warning()
            << "TranslationResourceLoader::eventFilter() called during destruction, ignoring";
        return false;
    }
    const QVariant language = watched->property(languageProperty);
    if (language.canConvert<QLocale>())
        reloadTranslations(language.toLocale());
    return false;
}

bool TranslationResourceLoader::Resource::load(const QLocale &locale)
{
    if (!translator)
        translator = std::make_shared<utils::ExchangeableTranslator>();
    auto translations = std::make_unique<QTranslator>();
    const bool isLoaded
        = translations->load(locale, prefix, separator, directory, suffix + QLatin1String(".qm"));
    if (!isLoaded)
        translations.reset();
    translator->exchange(std::move(translations));
    return isLoaded;
}

void TranslationResourceLoader::scanTranslations()
{
    for (const Resource &resource : qAsConst(resources)) {
        const QString pattern
            = QStringLiteral("%1%2*%3.qm").arg(resource.prefix, resource.separator, resource.suffix);
        const auto files = QDir(resource.directory)
                               .entryInfoList({pattern}, QDir::Files | QDir::CaseSensitive, QDir::Name);
        for (const QFileInfo &file : files) {
            QString name = file.completeBaseName();
            name.remove(0, resource.prefix.size() + resource.separator.size());
            name.chop(resource.suffix.size());
            const QLocale locale(name);
            if (locale != QLocale::system())
                supportedLocales.append(locale);
        }
    }
}

bool TranslationResourceLoader::reloadTranslations(const QLocale &locale)
{
    if (initialized && locale == currentLocale)
        return false;
    QCoreApplication *const application = QCoreApplication::instance();
    // What is installed here need not be told to this loader.
    application->removeEventFilter(this);
    currentLocale = locale;
    initialized = true;
    const QStringList added = loadResources(locale);
    // Read anew: another loader may have added its own meanwhile.
    if (!added.isEmpty())
        application->setProperty(translatorsProperty,
                                 application->property(translatorsProperty).toStringList() + added);
    application->installEventFilter(this);
    return true;
}

QStringList TranslationResourceLoader::loadResources(const QLocale &locale)
{
    QStringList added;
    bool isReloaded = false;
    for (Resource &resource : resources) {
        // The application may answer an installed translator with another language.
        if (locale != currentLocale)
            break;
        const bool isLoaded = resource.load(locale);
        isReloaded = isReloaded || resource.installed;
        if (!isLoaded || resource.installed)
            continue;
        resource.installed = true;
        if (!QCoreApplication::installTranslator(resource.translator.get()))
            resource.installed = false;
        else
            added.append(
                (resource.directory + resource.prefix + resource.separator + resource.suffix).trimmed());
    }
    if (isReloaded) {
        // An installed translator does not say that it has changed: one time for all will do.
        QEvent event(QEvent::LanguageChange);
        QCoreApplication::sendEvent(QCoreApplication::instance(), &event);
    }
    return added;
}

} // namespace Shared::Localization
