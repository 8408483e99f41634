#pragma once

#include <appconfig/interfaces/AttributesQueryInterface.h>
#include <appconfig/utils/ValueConversion.h>
#include <shared/hierarchy/HierarchyNode.h>

namespace Tessellum::AppConfig::Attributes {
class Attribute;
}

namespace Tessellum::AppConfig::utils {

/*! Finds attributes beneath the root; gives nodes, so it stays inside the library. Holds no lock. */
class AttributesQueryProvider : public Interfaces::AttributesQueryInterface
{
public:
    explicit AttributesQueryProvider(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &root);

    QList<std::shared_ptr<Interfaces::AttributeInterface>> queryAttributes(const QString &pattern) override;
    bool getValue(const QString &path, QVariant &out, const int &metaType) override;
    std::shared_ptr<Interfaces::AttributeInterface> getAttribute(const QString &path) override;
    std::shared_ptr<const Interfaces::AttributeInterface> getAttribute(const QString &path) const override;

    std::shared_ptr<Attributes::Attribute> findAttribute(const QString &path);
    /*! Follows read-only links too. */
    std::shared_ptr<const Attributes::Attribute> findAttribute(const QString &path) const;
    QList<std::shared_ptr<Attributes::Attribute>> findAttributes(const QString &pattern) const;

private:
    std::shared_ptr<Shared::Hierarchy::HierarchyNode> root;
};

/*!
 * Reads \a attribute once, so that the test for a value and the value told are of the same state, and
 * converts to \a metaType unless it is 0; a text becomes a number under \a localization (may be empty).
 * False: no read access, no valid value, or no conversion.
 */
bool ReadAttributeValue(const Attributes::Attribute &attribute,
                        const std::shared_ptr<Core::CoreLocalizationInterface> &localization, QVariant &out,
                        int metaType);

} // namespace Tessellum::AppConfig::utils
