#pragma once

#include <appdata/DataTypes.h>
#include <shared/TessellumExport.h>

#include <QByteArray>
#include <QVariant>

#include <memory>

namespace Tessellum::AppData::Interfaces {

/*! Reads one element. Threads: any. An element that has gone gives zeroes and empty values. */
class TESSELLUM_EXPORT DataElementQueryInterface
{
public:
    virtual quint64 getTimestamp() const = 0;
    virtual bool isActive() const = 0;
    /*! The bytes that the parser makes of the value, which is loaded for that; empty, with a WARNING,
     * without a parser. */
    virtual QByteArray getRawData() const = 0;
    /*! The value, loaded from the storage if it is not in memory. Never null; holds an invalid variant where
     * there is no value. */
    virtual std::shared_ptr<QVariant> getParsedData() const = 0;
    virtual bool performQueryCommand(const ElementQueryCommand &command) const = 0;
    virtual ~DataElementQueryInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
