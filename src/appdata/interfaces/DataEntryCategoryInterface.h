#pragma once

#include <appdata/DataTypes.h>
#include <shared/TessellumExport.h>

#include <QString>

namespace Tessellum::AppData::Interfaces {

/*! The kind of values of an entry. A value class; not for concurrent change. */
class TESSELLUM_EXPORT DataEntryCategoryInterface
{
public:
    virtual CategoryType getType() const = 0;
    /*! What tells categories of one type apart, in lower case; may be empty. */
    virtual QString getDetail() const = 0;
    virtual ~DataEntryCategoryInterface() = default;

protected:
    DataEntryCategoryInterface() = default;
    DataEntryCategoryInterface(const DataEntryCategoryInterface &) = default;
    DataEntryCategoryInterface &operator=(const DataEntryCategoryInterface &) = default;
};

} // namespace Tessellum::AppData::Interfaces
