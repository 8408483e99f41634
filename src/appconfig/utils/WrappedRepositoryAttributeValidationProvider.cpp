#include <appconfig/utils/WrappedRepositoryAttributeValidationProvider.h>

namespace Tessellum::AppConfig::utils {

QStringList WrappedRepositoryAttributeValidationProvider::getValidationIds() const
{
    return reading(
        [](const RepositoryAttributeValidationProvider &provider) { return provider.getValidationIds(); });
}

int WrappedRepositoryAttributeValidationProvider::assignValidation(const QString &pattern,
                                                                   const QString &validationId)
{
    return writing([&](RepositoryAttributeValidationProvider &provider) {
        return provider.assignValidation(pattern, validationId);
    });
}

int WrappedRepositoryAttributeValidationProvider::removeValidation(const QString &pattern,
                                                                   const QString &validationId)
{
    return writing([&](RepositoryAttributeValidationProvider &provider) {
        return provider.removeValidation(pattern, validationId);
    });
}

} // namespace Tessellum::AppConfig::utils
