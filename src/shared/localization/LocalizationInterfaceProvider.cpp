#include <shared/localization/LocalizationInterfaceProvider.h>

#include <QMutexLocker>

namespace Shared::Localization {

LocalizationInterfaceProvider::LocalizationInterfaceProvider(const QLocale &defaultLocale)
    : currentDefault(defaultLocale)
{ }

LocalizationInterfaceProvider::~LocalizationInterfaceProvider() = default;

QLocale LocalizationInterfaceProvider::defaultLocale() const
{
    QMutexLocker locker(&mutex);
    return currentDefault;
}

void LocalizationInterfaceProvider::registerAdditionalLocale(const QLocale &locale)
{
    QMutexLocker locker(&mutex);
    locales.insert(locale.name(), locale);
}

bool LocalizationInterfaceProvider::isLocaleRegistered(const QString &name) const
{
    QMutexLocker locker(&mutex);
    return locales.contains(name);
}

bool LocalizationInterfaceProvider::isLocaleRegistered(const QLocale &locale) const
{
    // The mutex is not recursive: the form with the name takes it.
    return isLocaleRegistered(locale.name());
}

QList<QLocale> LocalizationInterfaceProvider::getRegisteredLocales() const
{
    QMutexLocker locker(&mutex);
    return locales.values();
}

void LocalizationInterfaceProvider::replaceDefaultLocale(const QLocale &locale)
{
    QMutexLocker locker(&mutex);
    currentDefault = locale;
}

} // namespace Shared::Localization
