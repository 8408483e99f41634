#pragma once

#include <appconfig/interfaces/RepositoryAttributeValidationInterface.h>
#include <appconfig/validation/ValidationContainerInterface.h>
#include <shared/hierarchy/HierarchyNode.h>

namespace Tessellum::AppConfig::utils {

/*!
 * The work behind RepositoryAttributeValidationInterface, in two steps: the nodes are looked up under the
 * caller's lock, and changed without it, since a validation is an application's class.
 */
class RepositoryAttributeValidationProvider : public Interfaces::RepositoryAttributeValidationInterface
{
public:
    using Containers = QList<std::shared_ptr<Validation::utils::ValidationContainerInterface>>;

    explicit RepositoryAttributeValidationProvider(
        const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &root);

    QStringList getValidationIds() const override;
    int assignValidation(const QString &pattern, const QString &validationId) override;
    int removeValidation(const QString &pattern, const QString &validationId) override;

    /*! The nodes that match \a pattern and can have validations. */
    Containers findContainers(const QString &pattern) const;

    /*! The number of \a containers that took the validation. To be called with no lock held. */
    static int Assign(const Containers &containers, const QString &validationId);
    /*! The number of \a containers that had the validation. To be called with no lock held. */
    static int Remove(const Containers &containers, const QString &validationId);

private:
    std::shared_ptr<Shared::Hierarchy::HierarchyNode> root;
};

} // namespace Tessellum::AppConfig::utils
