#pragma once

#include <appconfig/validation/AttributeValidationInterface.h>

#include <functional>

namespace TestSupport {

class FunctionValidation : public Tessellum::AppConfig::Validation::AttributeValidationInterface
{
public:
    using Result = Tessellum::AppConfig::Validation::ValidationResult;
    using Function = std::function<Result(QVariant &)>;

    FunctionValidation(const QString &validationId, const Function &function)
        : AttributeValidationInterface(validationId)
        , judge(function)
    { }
    QString getValidationId() const override { return getId(); }
    Result validate(const std::shared_ptr<Tessellum::Core::CoreLocalizationInterface> &,
                    QVariant &value) override
    {
        return judge(value);
    }

private:
    const Function judge;
};

} // namespace TestSupport
