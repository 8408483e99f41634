#pragma once

#include <shared/TessellumExport.h>

#include <QByteArray>
#include <QVariant>

#include <memory>

namespace Tessellum::AppData::Interfaces {

/*!
 * Turns the bytes that a storage knows into the value that an application wants, and back.
 *
 * One object serves all elements of a category, on all threads at the same time and without a lock: it must
 * not have a state.
 */
class TESSELLUM_EXPORT DataElementParserInterface
{
public:
    virtual ~DataElementParserInterface() = default;
    /*! The bytes of \a value, which is not null. */
    virtual QByteArray toRaw(const std::shared_ptr<QVariant> &value) const = 0;
    /*! The value of \a raw; null where it cannot be parsed. */
    virtual std::shared_ptr<QVariant> parse(const QByteArray &raw) const = 0;
};

} // namespace Tessellum::AppData::Interfaces
