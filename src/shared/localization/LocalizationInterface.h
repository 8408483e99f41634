#pragma once

#include <shared/TessellumExport.h>

#include <QList>
#include <QLocale>
#include <QString>

namespace Shared::Localization {

/*!
 * Tells which locales the application supports and which one is its default. Any thread may call any
 * operation.
 */
class TESSELLUM_EXPORT LocalizationInterface
{
public:
    /*! The locale in which numbers are read unless the caller names another. */
    virtual QLocale defaultLocale() const = 0;

    /*! Enters the locale under its QLocale::name(); a locale of that name that is there already is replaced.
     */
    virtual void registerAdditionalLocale(const QLocale &locale) = 0;

    /*! Whether a locale of that QLocale::name() was registered. The default locale counts only if it was. */
    virtual bool isLocaleRegistered(const QString &name) const = 0;

    /*! As the other form, asked with the locale's name. */
    virtual bool isLocaleRegistered(const QLocale &locale) const = 0;

    /*! The registered locales, ordered by their names. */
    virtual QList<QLocale> getRegisteredLocales() const = 0;

    virtual ~LocalizationInterface() = default;
};

} // namespace Shared::Localization
