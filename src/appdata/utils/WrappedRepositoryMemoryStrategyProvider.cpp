#include <appdata/utils/WrappedRepositoryMemoryStrategyProvider.h>

namespace Tessellum::AppData::utils {

QStringList WrappedRepositoryMemoryStrategyProvider::getMemoryStrategyTypes() const
{
    return reading(
        [](const RepositoryMemoryStrategyProvider &provider) { return provider.getMemoryStrategyTypes(); });
}

int WrappedRepositoryMemoryStrategyProvider::installMemoryStrategy(const QString &classification,
                                                                   const QString &name, const QString &type)
{
    return writing([&](RepositoryMemoryStrategyProvider &provider) {
        return provider.installMemoryStrategy(classification, name, type);
    });
}

int WrappedRepositoryMemoryStrategyProvider::removeMemoryStrategy(const QString &classification,
                                                                  const QString &name, const QString &type)
{
    return writing([&](RepositoryMemoryStrategyProvider &provider) {
        return provider.removeMemoryStrategy(classification, name, type);
    });
}

} // namespace Tessellum::AppData::utils
