#pragma once

#include <appconfig/utils/AppConfigRepositoryEventThreadUser.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/localization/CoreLocalizationInterface.h>

#include <QVariant>

namespace Tessellum::AppConfig::Validation {

/*! What a validation says of a value. */
enum class ValidationResult : qint32 {
    Valid = 0, ///< accepted as it is
    Adjusted = 1, ///< the value was replaced
    Failed = 2, ///< out of limits
    Incompatible = 3 ///< no usable form
};

/*! A named node that checks, and may correct, a value before an update reaches an attribute. */
class TESSELLUM_EXPORT AttributeValidationInterface
    : public Shared::Hierarchy::HierarchyNodeInstance,
      public AppConfig::utils::AppConfigRepositoryEventThreadUser
{
    Q_OBJECT
public:
    explicit AttributeValidationInterface(const QString &id);

    virtual QString getValidationId() const = 0;
    /*! Judges \a value and may replace it; runs on pool threads, several at a time. \a localization may be
     * empty. */
    virtual ValidationResult validate(const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                                      QVariant &value)
        = 0;
};

} // namespace Tessellum::AppConfig::Validation

Q_DECLARE_METATYPE(Tessellum::AppConfig::Validation::ValidationResult)
