#pragma once

#include <appconfig/interfaces/RepositoryAttributeValidationInterface.h>
#include <shared/hierarchy/HierarchyNode.h>

namespace Tessellum::AppConfig::utils {

/*! The work behind RepositoryAttributeValidationInterface; holds no lock. */
class RepositoryAttributeValidationProvider : public Interfaces::RepositoryAttributeValidationInterface
{
public:
    explicit RepositoryAttributeValidationProvider(
        const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &root);

    QStringList getValidationIds() const override;
    int assignValidation(const QString &pattern, const QString &validationId) override;
    int removeValidation(const QString &pattern, const QString &validationId) override;

private:
    std::shared_ptr<Shared::Hierarchy::HierarchyNode> root;
};

} // namespace Tessellum::AppConfig::utils
