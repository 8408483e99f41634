#include <shared/localization/DistinctLocalesCache.h>

#include <QCoreApplication>
#include <QVariant>

namespace Shared::Localization {

DistinctLocalesCache::DistinctLocalesCache()
{
    insert(QLocale::system());
    insert(QLocale::c());
    const auto all = QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    for (const QLocale &locale : all)
        insert(locale);
}

const DistinctLocalesCache &DistinctLocalesCache::getInstance()
{
    // Never destroyed: threads that outlive the static destructors may still read numbers.
    static const auto *const cache = new DistinctLocalesCache;
    return *cache;
}

QList<QLocale> DistinctLocalesCache::distinctLocales() const
{
    QList<QLocale> locales = preferredOrder;
    if (const QCoreApplication *application = QCoreApplication::instance()) {
        // The language that the user chose wins where a text could be read in two ways.
        const QVariant language = application->property("current_language");
        if (language.canConvert<QLocale>())
            locales.prepend(language.toLocale());
    }
    return locales;
}

QString DistinctLocalesCache::getHashForLocale(const QLocale &locale)
{
    return QStringLiteral("%1%2%3%4%5")
        .arg(locale.decimalPoint(), locale.groupSeparator(), locale.negativeSign(), locale.positiveSign(),
             locale.zeroDigit());
}

void DistinctLocalesCache::insert(const QLocale &locale)
{
    const QString notation = getHashForLocale(locale);
    if (representatives.contains(notation))
        return;
    representatives.insert(notation, locale);
    preferredOrder.append(locale);
}

} // namespace Shared::Localization
