#pragma once

#include <shared/TessellumExport.h>

#include <QString>

namespace Tessellum::AppData::Interfaces {

/*! Decides for one element at a time whether its parsed value stays in memory. Threads: any. */
class TESSELLUM_EXPORT MemoryStrategyInterface
{
public:
    /*! What evaluate() answers. */
    enum Decision : qint32 { Keep = 0, Unload = 1, NoDecision = 2 };

    virtual QString getType() const = 0;
    /*! Takes the parameters as JSON text; false, with nothing changed, where it cannot. */
    virtual bool configure(const QString &parameters) = 0;
    virtual qint32 evaluate(const QString &elementUuid) = 0;
    virtual ~MemoryStrategyInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
