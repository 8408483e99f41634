#pragma once

#include <shared/TessellumExport.h>

#include <QVariant>

namespace Tessellum::AppConfig::Interfaces {

/*!
 * An object that carries the value of an attribute in place of the node.
 *
 * Threads: both operations run on the threads that read and update, under the lock of the attribute's node.
 * They must neither wait for a task on the same node nor call the functions of another attribute.
 */
class TESSELLUM_EXPORT CustomAttributeDataInterface
{
public:
    virtual ~CustomAttributeDataInterface() = default;
    /*! Puts the present value into \a out; \a stored is the value that the node holds. False: the read fails.
     */
    virtual bool read(const QVariant &stored, QVariant &out) = 0;
    /*! Takes the value \a in; \a stored may be changed. False: the update fails. */
    virtual bool write(QVariant &stored, const QVariant &in) = 0;
};

} // namespace Tessellum::AppConfig::Interfaces
