#pragma once

#include <appconfig/interfaces/AttributeInterface.h>

#include <QList>

namespace Tessellum::AppConfig::Interfaces {

/*! Looks up and reads attributes. Any thread may call; after a stop of the library everything answers empty.
 */
class TESSELLUM_EXPORT AttributesQueryInterface
{
public:
    /*!
     * The attributes that match \a pattern, element by element with shell wildcards: "a.b" that one, "a.*"
     * all beneath a, "*." the direct children of the root.
     */
    virtual QList<std::shared_ptr<AttributeInterface>> queryAttributes(const QString &pattern) = 0;
    /*! Reads the value at \a path, converted to \a metaType unless it is 0. False: no attribute, or no value.
     */
    virtual bool getValue(const QString &path, QVariant &out, const int &metaType) = 0;
    /*! The attribute at \a path; empty if there is none. Read-only links ("internal") are not followed. */
    virtual std::shared_ptr<AttributeInterface> getAttribute(const QString &path) = 0;
    /*! The attribute at \a path for reading; follows read-only links too. */
    virtual std::shared_ptr<const AttributeInterface> getAttribute(const QString &path) const = 0;
    virtual ~AttributesQueryInterface() = default;
};

} // namespace Tessellum::AppConfig::Interfaces
