#include <appdata/utils/WrappedEntryMemoryStrategyProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::DataEntryMemoryStrategyInterface;

bool WrappedEntryMemoryStrategyProvider::installMemoryStrategy(const QString &type, const QString &parameters)
{
    return writing([&](DataEntryMemoryStrategyInterface &entry) {
        return entry.installMemoryStrategy(type, parameters);
    });
}

bool WrappedEntryMemoryStrategyProvider::removeMemoryStrategy()
{
    return writing([](DataEntryMemoryStrategyInterface &entry) { return entry.removeMemoryStrategy(); });
}

bool WrappedEntryMemoryStrategyProvider::configureMemoryStrategy(const QString &parameters)
{
    return writing(
        [&](DataEntryMemoryStrategyInterface &entry) { return entry.configureMemoryStrategy(parameters); });
}

bool WrappedEntryMemoryStrategyProvider::getMemoryStrategyType(QString &type) const
{
    return reading(
        [&](const DataEntryMemoryStrategyInterface &entry) { return entry.getMemoryStrategyType(type); });
}

} // namespace Tessellum::AppData::utils
