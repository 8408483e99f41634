#pragma once

#include <shared/TessellumExport.h>

#include <QHash>
#include <QList>
#include <QLocale>
#include <QString>

namespace Shared::Localization {

/*!
 * Under which locales a number text must be tried so that every notation known here is covered: one locale
 * for each distinct set of decimal point, group separator, signs and zero digit. Read-only after its
 * construction.
 */
class TESSELLUM_EXPORT DistinctLocalesCache
{
public:
    /*! Goes through all locales that Qt knows; of those that write numbers alike the first one is kept. */
    DistinctLocalesCache();

    /*! The process-wide cache, made at first use. */
    static const DistinctLocalesCache &getInstance();

    /*!
     * The locales in the order in which they should be tried: the property "current_language" of the
     * application object, if it holds a QLocale, then the system's locale, the C locale and the others. Any
     * thread, as long as none sets that property meanwhile: Qt does not guard the properties of an object.
     */
    QList<QLocale> distinctLocales() const;

    /*! The notation of a locale, the same text for locales that write numbers alike. */
    static QString getHashForLocale(const QLocale &locale);

private:
    void insert(const QLocale &locale);

    QHash<QString, QLocale> representatives;
    QList<QLocale> preferredOrder;
};

} // namespace Shared::Localization
