#pragma once

#include <appdata/interfaces/RepositoryMemoryStrategyInterface.h>

namespace Tessellum::AppData::utils {

/*! The work behind RepositoryMemoryStrategyInterface; holds no lock. */
class RepositoryMemoryStrategyProvider : public Interfaces::RepositoryMemoryStrategyInterface
{
public:
    QStringList getMemoryStrategyTypes() const override;
    int installMemoryStrategy(const QString &classification, const QString &name,
                              const QString &type) override;
    int removeMemoryStrategy(const QString &classification, const QString &name,
                             const QString &type) override;
};

} // namespace Tessellum::AppData::utils
