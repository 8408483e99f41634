#pragma once

#include <shared/TessellumExport.h>

#include <QList>
#include <QLocale>
#include <QString>

namespace Tessellum::Core {

/*!
 * The locale registry as the core hands it out: what Shared::Localization::LocalizationInterface offers, and
 * a default locale that can be changed. Any thread may call any operation.
 */
class TESSELLUM_EXPORT CoreLocalizationInterface
{
public:
    /*! The locale in which numbers are read unless the caller names another. */
    virtual QLocale defaultLocale() const = 0;

    /*! Replaces the default locale. It is not registered by this. */
    virtual void setDefaultLocale(const QLocale &locale) = 0;

    /*! Enters the locale under its QLocale::name(); a locale of that name that is there already is replaced.
     */
    virtual void registerAdditionalLocale(const QLocale &locale) = 0;

    /*! Whether a locale of that QLocale::name() was registered. The default locale counts only if it was. */
    virtual bool isLocaleRegistered(const QString &name) const = 0;

    /*! As the other form, asked with the locale's name. */
    virtual bool isLocaleRegistered(const QLocale &locale) const = 0;

    /*! The registered locales, ordered by their names. */
    virtual QList<QLocale> getRegisteredLocales() const = 0;

    virtual ~CoreLocalizationInterface() = default;
};

} // namespace Tessellum::Core
