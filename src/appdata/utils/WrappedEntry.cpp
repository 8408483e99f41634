#include <appdata/utils/WrappedEntry.h>
#include <appdata/utils/WrappedEntryManipulationProvider.h>
#include <appdata/utils/WrappedEntryMemoryStrategyProvider.h>
#include <appdata/utils/WrappedEntryQueryProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::DataEntryInterface;

namespace {

const auto manipulationOf = [](DataEntryInterface &entry) { return entry.getManipulationInterface(); };
const auto queryOf = [](DataEntryInterface &entry) { return entry.getQueryInterface(); };
const auto memoryStrategyOf = [](DataEntryInterface &entry) { return entry.getMemoryStrategyInterface(); };

} // namespace

QString WrappedEntry::getName() const
{
    return reading([](const DataEntryInterface &entry) { return entry.getName(); });
}

QString WrappedEntry::getUuid() const
{
    return reading([](const DataEntryInterface &entry) { return entry.getUuid(); });
}

QString WrappedEntry::getStorageName() const
{
    return reading([](const DataEntryInterface &entry) { return entry.getStorageName(); });
}

std::shared_ptr<Interfaces::DataEntryCategoryInterface> WrappedEntry::getCategory() const
{
    return reading([](const DataEntryInterface &entry) { return entry.getCategory(); });
}

QString WrappedEntry::getClassification() const
{
    return reading([](const DataEntryInterface &entry) { return entry.getClassification(); });
}

PersistenceType WrappedEntry::getPersistenceType() const
{
    return reading([](const DataEntryInterface &entry) { return entry.getPersistenceType(); });
}

bool WrappedEntry::setPersistenceType(const PersistenceType &type)
{
    return writing([&](DataEntryInterface &entry) { return entry.setPersistenceType(type); });
}

LoadStatus WrappedEntry::getLoadStatus() const
{
    return reading([](const DataEntryInterface &entry) { return entry.getLoadStatus(); });
}

bool WrappedEntry::isSingleElementEntry() const
{
    return reading([](const DataEntryInterface &entry) { return entry.isSingleElementEntry(); });
}

quint64 WrappedEntry::getCapacity() const
{
    return reading([](const DataEntryInterface &entry) { return entry.getCapacity(); });
}

std::shared_ptr<const Interfaces::DataEntryManipulationInterface>
WrappedEntry::getManipulationInterface() const
{
    return wrapped<WrappedEntryManipulationProvider>(manipulationOf);
}

std::shared_ptr<Interfaces::DataEntryManipulationInterface> WrappedEntry::getManipulationInterface()
{
    return wrapped<WrappedEntryManipulationProvider>(manipulationOf);
}

std::shared_ptr<const Interfaces::DataEntryQueryInterface> WrappedEntry::getQueryInterface() const
{
    return wrapped<WrappedEntryQueryProvider>(queryOf);
}

std::shared_ptr<Interfaces::DataEntryQueryInterface> WrappedEntry::getQueryInterface()
{
    return wrapped<WrappedEntryQueryProvider>(queryOf);
}

std::shared_ptr<const Interfaces::DataEntryMemoryStrategyInterface>
WrappedEntry::getMemoryStrategyInterface() const
{
    return wrapped<WrappedEntryMemoryStrategyProvider>(memoryStrategyOf);
}

std::shared_ptr<Interfaces::DataEntryMemoryStrategyInterface> WrappedEntry::getMemoryStrategyInterface()
{
    return wrapped<WrappedEntryMemoryStrategyProvider>(memoryStrategyOf);
}

} // namespace Tessellum::AppData::utils
