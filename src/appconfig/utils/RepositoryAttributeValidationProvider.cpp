#include <appconfig/utils/RepositoryAttributeValidationProvider.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <appconfig/validation/ValidationContainerInterface.h>

namespace Tessellum::AppConfig::utils {

using Shared::Hierarchy::HierarchyNode;
using Validation::AttributeValidationRepository;
using Validation::utils::ValidationContainerInterface;

namespace {

/*! The number of nodes that match \a pattern and for which \a change answers true. */
template <typename Change>
int countChanged(HierarchyNode &root, const QString &pattern, Change change)
{
    int count = 0;
    for (const auto &node : root.queryChildren<HierarchyNode>(pattern)) {
        const auto container = std::dynamic_pointer_cast<ValidationContainerInterface>(node);
        if (container && change(*container))
            ++count;
    }
    return count;
}

} // namespace

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
    const auto validation = AttributeValidationRepository::getInstance()->getValidation(validationId);
    if (!validation)
        return 0;
    return countChanged(*root, pattern, [&validation](ValidationContainerInterface &container) {
        return container.addValidation(validation);
    });
}

int RepositoryAttributeValidationProvider::removeValidation(const QString &pattern,
                                                            const QString &validationId)
{
    return countChanged(*root, pattern, [&validationId](ValidationContainerInterface &container) {
        return container.removeValidation(validationId);
    });
}

} // namespace Tessellum::AppConfig::utils
