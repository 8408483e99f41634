#pragma once

#include <appconfig/validation/AttributeValidationInterface.h>

#include <atomic>
#include <limits>

namespace Tessellum::AppConfig::Validation {

/*!
 * A range check on a number. The children "Minimum", "Maximum" and "Clipping" configure it and are read when
 * they are added, at no other time; "Type" may stand beside them, anything else is refused. Without clipping
 * a value out of range fails; with it, every value becomes a T within the limits.
 *
 * Threads: any. The limits are atomics, since a child may be added while pool threads judge values.
 */
template <class T>
class LimitsValidation : public AttributeValidationInterface
{
public:
    explicit LimitsValidation(const QString &id);

    QString getValidationId() const override;
    /*! A value that is no number is judged as 0. */
    ValidationResult validate(const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                              QVariant &value) override;

    /*! False for any child but the four attributes, and for one whose value cannot be read as it should. */
    bool addChild(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &child, quint64 *index) override;
    /*! Makes those of the three configuring children that are missing, with the present values. */
    bool setParent(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &newParent,
                   const bool &silent) override;

private:
    bool readChild(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &child);
    bool makeMissingChild(const QString &key, const QVariant &value);

    std::atomic<T> minimum{std::numeric_limits<T>::lowest()};
    std::atomic<T> maximum{std::numeric_limits<T>::max()};
    std::atomic<bool> clipping{false};
};

extern template class LimitsValidation<signed char>;
extern template class LimitsValidation<short>;
extern template class LimitsValidation<int>;
extern template class LimitsValidation<float>;
extern template class LimitsValidation<double>;
extern template class LimitsValidation<long long>;

} // namespace Tessellum::AppConfig::Validation
