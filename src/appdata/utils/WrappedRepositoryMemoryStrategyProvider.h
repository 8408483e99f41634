#pragma once

#include <appdata/utils/RepositoryMemoryStrategyProvider.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! The memory strategies as an application gets them. */
class WrappedRepositoryMemoryStrategyProvider : public Interfaces::RepositoryMemoryStrategyInterface,
                                                private WrappedFront<RepositoryMemoryStrategyProvider>
{
public:
    using WrappedFront::WrappedFront;

    QStringList getMemoryStrategyTypes() const override;
    int installMemoryStrategy(const QString &classification, const QString &name,
                              const QString &type) override;
    int removeMemoryStrategy(const QString &classification, const QString &name,
                             const QString &type) override;
};

} // namespace Tessellum::AppData::utils
