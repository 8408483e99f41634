#pragma once

#include <shared/localization/CoreLocalizationInterface.h>
#include <shared/localization/LocalizationInterfaceProvider.h>

namespace Tessellum {

/*!
 * The process-wide locale registry of the library: the shared registry seen through both interfaces, with a
 * default locale that the application may change. Guarded by the mutex of its base; any thread may call any
 * operation.
 */
class TESSELLUM_EXPORT TessellumLocalizationInterfaceProvider
    : public Shared::Localization::LocalizationInterfaceProvider,
      public virtual Core::CoreLocalizationInterface
{
public:
    explicit TessellumLocalizationInterfaceProvider(const QLocale &defaultLocale = QLocale());
    ~TessellumLocalizationInterfaceProvider() override;

    QLocale defaultLocale() const override;
    void setDefaultLocale(const QLocale &locale) override;
    void registerAdditionalLocale(const QLocale &locale) override;
    bool isLocaleRegistered(const QString &name) const override;
    bool isLocaleRegistered(const QLocale &locale) const override;
    QList<QLocale> getRegisteredLocales() const override;
};

} // namespace Tessellum
