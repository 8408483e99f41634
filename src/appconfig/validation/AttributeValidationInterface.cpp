#include <appconfig/validation/AttributeValidationInterface.h>

namespace Tessellum::AppConfig::Validation {

AttributeValidationInterface::AttributeValidationInterface(const QString &validationId)
    : HierarchyNodeInstance(validationId)
    , AppConfigRepositoryEventThreadUser(this)
{ }

} // namespace Tessellum::AppConfig::Validation
