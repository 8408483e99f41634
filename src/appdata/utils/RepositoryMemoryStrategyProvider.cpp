#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/memory_strategy/MemoryStrategyRepository.h>
#include <appdata/utils/RepositoryDataEntryProvider.h>
#include <appdata/utils/RepositoryMemoryStrategyProvider.h>
#include <appdata/utils/RepositoryProvider.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppData::utils {

using MemoryStrategies::MemoryStrategyRepository;

QStringList RepositoryMemoryStrategyProvider::getMemoryStrategyTypes() const
{
    return MemoryStrategyRepository::getInstance()->getRegisteredProductIdentifier();
}

int RepositoryMemoryStrategyProvider::installMemoryStrategy(const QString &classification,
                                                            const QString &name, const QString &type)
{
    MemoryStrategyRepository *const repository = MemoryStrategyRepository::getInstance();
    if (!repository->isTypeRegistered(type)) {
        Shared::Logging::FrameworkLog().warning()
            << "RepositoryMemoryStrategyProvider::installMemoryStrategy() installing memory strategy=" << type
            << " for classification=" << classification << " and name=" << name
            << " failed, no such memory strategy type registered!";
        return 0;
    }
    const QString pattern = Data::Entries::utils::PairPath(classification, name);
    repository->setStrategyPattern(pattern, type);
    const auto entries = RepositoryProvider::getInstance()->getDataEntryProvider();
    int installed = 0;
    for (const auto &entry : entries ? entries->getDataEntries(pattern)
                                     : QList<std::shared_ptr<Interfaces::DataEntryInterface>>()) {
        if (entry->getMemoryStrategyInterface()->installMemoryStrategy(type, QString()))
            ++installed;
    }
    return installed;
}

int RepositoryMemoryStrategyProvider::removeMemoryStrategy(const QString &, const QString &, const QString &)
{
    return 0;
}

} // namespace Tessellum::AppData::utils
