#pragma once

#include <appconfig/attributes/Attribute.h>
#include <shared/localization/LocalizationInterface.h>

namespace Tessellum::AppConfig::Attributes {

/*!
 * A caller's weak handle on an attribute; safe to keep past the end of the attribute, on any thread.
 *
 * With the attribute gone: isDeleteFlagSet() and markForDeletion() true, all else false, 0 or empty.
 */
class TESSELLUM_EXPORT AttributeReference : public Interfaces::AttributeInterface,
                                            public Validation::utils::ValidationContainerInterface
{
public:
    /*! A read-only reference. \a localization may be empty. */
    AttributeReference(const std::weak_ptr<const Attribute> &attribute,
                       const std::weak_ptr<Shared::Localization::LocalizationInterface> &localization);
    /*! A reference that can write too. */
    AttributeReference(const std::weak_ptr<Attribute> &attribute,
                       const std::weak_ptr<Shared::Localization::LocalizationInterface> &localization);

    bool isDeleteFlagSet() const override;
    bool isLocked() const override;
    bool hasValue() const override;
    bool getValue(QVariant &out, const int &metaType) const override;
    bool getLocalizedValue(QVariant &out,
                           const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                           const int &metaType) const override;
    QString getId() const override;
    QString getPath() const override;
    quint32 getAccess() const override;
    /*! False on a read-only reference to an attribute that is not on its way out. */
    virtual bool markForDeletion();

    QList<std::shared_ptr<Validation::AttributeValidationInterface>> getValidations() const override;
    QStringList getValidationIds() const override;
    bool addValidation(const std::shared_ptr<Validation::AttributeValidationInterface> &validation) override;
    bool hasValidation(const QString &id) const override;
    bool removeValidation(const QString &id) override;

    /*! For task bodies; false on a read-only reference. */
    bool setValue(const QVariant &value);
    /*! The localization, if it lives and can tell a default locale to be changed; empty otherwise. */
    std::shared_ptr<Core::CoreLocalizationInterface> getLocalization() const;

private:
    std::weak_ptr<Attribute> writable;
    std::weak_ptr<const Attribute> readable;
    std::weak_ptr<Shared::Localization::LocalizationInterface> localization;
};

} // namespace Tessellum::AppConfig::Attributes
