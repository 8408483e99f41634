#pragma once

#include <appconfig/utils/AttributesQueryProvider.h>
#include <appconfig/utils/ProviderFront.h>
#include <shared/localization/LocalizationInterface.h>

namespace Tessellum::AppConfig::utils {

/*!
 * The application's way to look attributes up: gives references, and reads texts as numbers under the
 * localization. The lock is held for reading while a node is looked up; a value is read after it.
 */
class WrappedAttributesQueryProvider : public Interfaces::AttributesQueryInterface,
                                       private ProviderFront<AttributesQueryProvider>
{
public:
    WrappedAttributesQueryProvider(
        const std::weak_ptr<AttributesQueryProvider> &provider, QReadWriteLock *lock,
        const std::shared_ptr<Shared::Localization::LocalizationInterface> &localization);

    /*! Read-only references. */
    QList<std::shared_ptr<Interfaces::AttributeInterface>> queryAttributes(const QString &pattern) override;
    bool getValue(const QString &path, QVariant &out, const int &metaType) override;
    /*! A reference that can write too. */
    std::shared_ptr<Interfaces::AttributeInterface> getAttribute(const QString &path) override;
    std::shared_ptr<const Interfaces::AttributeInterface> getAttribute(const QString &path) const override;

private:
    std::shared_ptr<Shared::Localization::LocalizationInterface> localization;
    /*! The same object, if it is of the kind by which values are converted. */
    std::shared_ptr<Core::CoreLocalizationInterface> conversion;
};

} // namespace Tessellum::AppConfig::utils
