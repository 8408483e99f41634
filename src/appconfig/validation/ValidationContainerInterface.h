#pragma once

#include <shared/TessellumExport.h>

#include <QList>
#include <QStringList>

#include <memory>

namespace Tessellum::AppConfig::Validation {
class AttributeValidationInterface;
}

namespace Tessellum::AppConfig::Validation::utils {

/*! The validations assigned to one attribute. Any thread may call. */
class TESSELLUM_EXPORT ValidationContainerInterface
{
public:
    virtual ~ValidationContainerInterface() = default;
    /*! In the order in which they were added. */
    virtual QList<std::shared_ptr<AttributeValidationInterface>> getValidations() const = 0;
    virtual QStringList getValidationIds() const = 0;
    /*! False for a null pointer and for an id that is there, which keeps the earlier one. */
    virtual bool addValidation(const std::shared_ptr<AttributeValidationInterface> &validation) = 0;
    virtual bool hasValidation(const QString &id) const = 0;
    virtual bool removeValidation(const QString &id) = 0;
};

} // namespace Tessellum::AppConfig::Validation::utils
