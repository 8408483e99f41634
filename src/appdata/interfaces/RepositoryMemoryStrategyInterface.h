#pragma once

#include <shared/TessellumExport.h>

#include <QStringList>

namespace Tessellum::AppData::Interfaces {

/*! Memory strategies by classification and name. Threads: any. */
class TESSELLUM_EXPORT RepositoryMemoryStrategyInterface
{
public:
    virtual QStringList getMemoryStrategyTypes() const = 0;
    /*! Installs a strategy at all entries that match, which may use wildcards, and at those that will be
     * added. The number of entries that took it; 0 for an unknown type. */
    virtual int installMemoryStrategy(const QString &classification, const QString &name, const QString &type)
        = 0;
    /*! Has no effect and returns 0. */
    virtual int removeMemoryStrategy(const QString &classification, const QString &name, const QString &type)
        = 0;
    virtual ~RepositoryMemoryStrategyInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
