#pragma once

#include <shared/TessellumExport.h>

#include <QString>
#include <QStringList>

namespace Tessellum::AppConfig::Interfaces {

/*! Assigns registered validations to attributes. Any thread may call. */
class TESSELLUM_EXPORT RepositoryAttributeValidationInterface
{
public:
    /*! The ids of all registered validations, sorted. */
    virtual QStringList getValidationIds() const = 0;
    /*! The number of attributes that match \a pattern and took the validation. */
    virtual int assignValidation(const QString &pattern, const QString &validationId) = 0;
    /*! The number of attributes that match \a pattern and had the validation. */
    virtual int removeValidation(const QString &pattern, const QString &validationId) = 0;
    virtual ~RepositoryAttributeValidationInterface() = default;
};

} // namespace Tessellum::AppConfig::Interfaces
