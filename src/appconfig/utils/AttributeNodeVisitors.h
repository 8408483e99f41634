#pragma once

#include <appconfig/attributes/Attribute.h>

#include <QMetaType>

namespace Tessellum::AppConfig::utils {

/*! Reads an attribute node as a T; the reader of a settings wrapper. False for any other node, and for none.
 */
template <typename T>
class AttributeNodeReadVisitor
{
public:
    bool operator()(const std::shared_ptr<const Shared::Hierarchy::HierarchyNode> &node, QVariant &out) const
    {
        const auto attribute = std::dynamic_pointer_cast<const Attributes::Attribute>(node);
        return attribute && attribute->getValue(out, qMetaTypeId<T>());
    }
};

/*!
 * Writes an attribute node straight, without a task and without a notification; the writer of a settings
 * wrapper. Refuses a value that could not be read back as a T. The value keeps its own type.
 */
template <typename T>
class AttributeNodeWriteVisitor
{
public:
    bool operator()(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &node,
                    const QVariant &value) const
    {
        const auto attribute = std::dynamic_pointer_cast<Attributes::Attribute>(node);
        return attribute && value.canConvert(qMetaTypeId<T>()) && attribute->setValue(value);
    }
};

} // namespace Tessellum::AppConfig::utils
