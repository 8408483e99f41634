#pragma once

#include <shared/localization/LocalizationInterface.h>

#include <QMap>
#include <QMutex>

namespace Shared::Localization {

/*!
 * A registry of locales. One mutex guards the default locale and the map; no operation calls foreign code
 * under it.
 */
class TESSELLUM_EXPORT LocalizationInterfaceProvider : public virtual LocalizationInterface
{
public:
    explicit LocalizationInterfaceProvider(const QLocale &defaultLocale);
    ~LocalizationInterfaceProvider() override;

    QLocale defaultLocale() const override;
    void registerAdditionalLocale(const QLocale &locale) override;
    bool isLocaleRegistered(const QString &name) const override;
    bool isLocaleRegistered(const QLocale &locale) const override;
    QList<QLocale> getRegisteredLocales() const override;

protected:
    /*! For registries whose default may change while they are in use. */
    void replaceDefaultLocale(const QLocale &locale);

private:
    Q_DISABLE_COPY(LocalizationInterfaceProvider)

    mutable QMutex mutex;
    QLocale currentDefault;
    QMap<QString, QLocale> locales;
};

} // namespace Shared::Localization
