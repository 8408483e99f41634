#pragma once

#include <appdata/interfaces/DataEntryMemoryStrategyInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle of an entry's memory strategy. */
class WrappedEntryMemoryStrategyProvider : public Interfaces::DataEntryMemoryStrategyInterface,
                                           private WrappedFront<Interfaces::DataEntryMemoryStrategyInterface>
{
public:
    using WrappedFront::WrappedFront;

    bool installMemoryStrategy(const QString &type, const QString &parameters) override;
    bool removeMemoryStrategy() override;
    bool configureMemoryStrategy(const QString &parameters) override;
    bool getMemoryStrategyType(QString &type) const override;
};

} // namespace Tessellum::AppData::utils
