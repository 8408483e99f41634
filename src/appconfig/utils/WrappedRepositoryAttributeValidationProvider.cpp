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
    return RepositoryAttributeValidationProvider::Assign(findContainers(pattern), validationId);
}

int WrappedRepositoryAttributeValidationProvider::removeValidation(const QString &pattern,
                                                                   const QString &validationId)
{
    return RepositoryAttributeValidationProvider::Remove(findContainers(pattern), validationId);
}

RepositoryAttributeValidationProvider::Containers
WrappedRepositoryAttributeValidationProvider::findContainers(const QString &pattern)
{
    return writing([&pattern](const RepositoryAttributeValidationProvider &provider) {
        return provider.findContainers(pattern);
    });
}

} // namespace Tessellum::AppConfig::utils
