#pragma once

#include <appconfig/validation/ValidationContainerInterface.h>

#include <atomic>

namespace Tessellum::AppConfig::Validation::utils {

/*!
 * Holds an attribute's validations. Its recursive mutex guards the list and is held over no call out; mutex
 * and list are made with the first validation, since most attributes never have one. Adding and removing are
 * const underneath, so that a read-only reference can do it too.
 */
class ValidationContainer : public ValidationContainerInterface
{
public:
    ValidationContainer() = default;
    ~ValidationContainer() override;
    ValidationContainer(const ValidationContainer &) = delete;
    ValidationContainer &operator=(const ValidationContainer &) = delete;

    QList<std::shared_ptr<AttributeValidationInterface>> getValidations() const override;
    QStringList getValidationIds() const override;
    bool addValidation(const std::shared_ptr<AttributeValidationInterface> &validation) override;
    bool hasValidation(const QString &id) const override;
    bool removeValidation(const QString &id) override;

    /*! What a read-only reference calls. */
    bool addValidationConst(const std::shared_ptr<AttributeValidationInterface> &validation) const;
    bool removeValidationConst(const QString &id) const;

private:
    struct Content;
    Content *contentIfMade() const;
    Content &contentMade() const;

    mutable std::atomic<Content *> made{nullptr};
};

} // namespace Tessellum::AppConfig::Validation::utils
