#include <appconfig/utils/RepositoryAttributeValidationProvider.h>
#include <appconfig/validation/AttributeValidationRepository.h>

#include <algorithm>

namespace Tessellum::AppConfig::utils {

using Shared::Hierarchy::HierarchyNode;
using Validation::AttributeValidationRepository;
using Validation::utils::ValidationContainerInterface;

RepositoryAttributeValidationProvider::RepositoryAttributeValidationProvider(
    const std::shared_ptr<HierarchyNode> &repositoryRoot)
    : root(repositoryRoot)
{ }

QStringList RepositoryAttributeValidationProvider::getValidationIds() const
{
    return AttributeValidationRepository::getInstance()->getValidationIds();
}

int RepositoryAttributeValidationProvider::assignValidation(const QString &pattern,
                                                            const QString &validationId)
{
    return Assign(findContainers(pattern), validationId);
}

int RepositoryAttributeValidationProvider::removeValidation(const QString &pattern,
                                                            const QString &validationId)
{
    return Remove(findContainers(pattern), validationId);
}

RepositoryAttributeValidationProvider::Containers
RepositoryAttributeValidationProvider::findContainers(const QString &pattern) const
{
    Containers found;
    for (const auto &node : root->queryChildren<HierarchyNode>(pattern)) {
        if (const auto container = std::dynamic_pointer_cast<ValidationContainerInterface>(node))
            found.append(container);
    }
    return found;
}

int RepositoryAttributeValidationProvider::Assign(const Containers &containers, const QString &validationId)
{
    const auto validation = AttributeValidationRepository::getInstance()->getValidation(validationId);
    return int(std::count_if(containers.begin(), containers.end(), [&validation](const auto &container) {
        return container->addValidation(validation);
    }));
}

int RepositoryAttributeValidationProvider::Remove(const Containers &containers, const QString &validationId)
{
    return int(std::count_if(containers.begin(), containers.end(), [&validationId](const auto &container) {
        return container->removeValidation(validationId);
    }));
}

} // namespace Tessellum::AppConfig::utils
