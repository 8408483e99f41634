#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

namespace Tessellum {

using Base = Shared::Localization::LocalizationInterfaceProvider;

TessellumLocalizationInterfaceProvider::TessellumLocalizationInterfaceProvider(const QLocale &defaultLocale)
    : Base(defaultLocale)
{ }

TessellumLocalizationInterfaceProvider::~TessellumLocalizationInterfaceProvider() = default;

// Each of these is the final overrider of the same operation in both interfaces.

QLocale TessellumLocalizationInterfaceProvider::defaultLocale() const
{
    return Base::defaultLocale();
}

void TessellumLocalizationInterfaceProvider::setDefaultLocale(const QLocale &locale)
{
    replaceDefaultLocale(locale);
}

void TessellumLocalizationInterfaceProvider::registerAdditionalLocale(const QLocale &locale)
{
    Base::registerAdditionalLocale(locale);
}

bool TessellumLocalizationInterfaceProvider::isLocaleRegistered(const QString &name) const
{
    return Base::isLocaleRegistered(name);
}

bool TessellumLocalizationInterfaceProvider::isLocaleRegistered(const QLocale &locale) const
{
    return Base::isLocaleRegistered(locale.name());
}

QList<QLocale> TessellumLocalizationInterfaceProvider::getRegisteredLocales() const
{
    return Base::getRegisteredLocales();
}

} // namespace Tessellum
