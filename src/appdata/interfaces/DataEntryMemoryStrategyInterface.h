#pragma once

#include <shared/TessellumExport.h>

#include <QString>

namespace Tessellum::AppData::Interfaces {

/*! Says which values of one entry stay parsed in memory. Threads: any. */
class TESSELLUM_EXPORT DataEntryMemoryStrategyInterface
{
public:
    /*! Installs a strategy by its type key, with parameters as JSON text. True, with nothing changed, where
     * one of that type is there; false for an unknown type. It takes effect at once. */
    virtual bool installMemoryStrategy(const QString &type, const QString &parameters) = 0;
    virtual bool removeMemoryStrategy() = 0;
    /*! False where there is no strategy or it refuses \a parameters; then nothing has changed. */
    virtual bool configureMemoryStrategy(const QString &parameters) = 0;
    /*! Whether a strategy is there; \a type becomes its type. */
    virtual bool getMemoryStrategyType(QString &type) const = 0;
    virtual ~DataEntryMemoryStrategyInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
