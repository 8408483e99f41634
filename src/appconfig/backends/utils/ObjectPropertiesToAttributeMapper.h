#pragma once

#include <appconfig/attributes/AttributeCreateData.h>
#include <shared/foundation/MetaPropertyWrapper.h>

namespace Tessellum::AppConfig::Backends::utils {

/*! Makes attributes of the properties of an object; each keeps a MetaPropertyWrapperPtr for its value. */
class ObjectPropertiesToAttributeMapper
{
public:
    /*!
     * Appends one attribute and its wrapper for each property that can be read or written and that the filter
     * names, in any case of letters; of all properties for an empty filter. Returns how many. The object must
     * live meanwhile.
     */
    static int ExtractProperties(QObject *object, Attributes::AttributesCreateData &out,
                                 QList<Shared::MetaPropertyWrapperPtr> &wrappers, const QStringList &filter);

    /*!
     * Reader and writer of such an attribute: what its wrapper says, converted to the type that \a out has.
     * They run under the lock of the attribute's node.
     */
    static bool ReadProperty(const QVariant &stored, QVariant &out);
    static bool WriteProperty(QVariant &stored, const QVariant &in);
};

} // namespace Tessellum::AppConfig::Backends::utils
