#pragma once

#include <appconfig/utils/ProviderFront.h>
#include <appconfig/utils/RepositoryAttributeValidationProvider.h>

namespace Tessellum::AppConfig::utils {

/*! The application's way to validations, each look-up under the repository's lock. */
class WrappedRepositoryAttributeValidationProvider
    : public Interfaces::RepositoryAttributeValidationInterface,
      private ProviderFront<RepositoryAttributeValidationProvider>
{
public:
    using ProviderFront<RepositoryAttributeValidationProvider>::ProviderFront;

    QStringList getValidationIds() const override;
    int assignValidation(const QString &pattern, const QString &validationId) override;
    int removeValidation(const QString &pattern, const QString &validationId) override;

private:
    RepositoryAttributeValidationProvider::Containers findContainers(const QString &pattern);
};

} // namespace Tessellum::AppConfig::utils
