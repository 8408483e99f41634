#include <appdata/data/entries/ClassificationNameEntry.h>
#include <appdata/data/entries/ClassificationNameEntryManipulationProvider.h>
#include <appdata/utils/PinnedInterface.h>

namespace Tessellum::AppData::Data::Entries {

using AppData::utils::PinnedInterface;

ClassificationNameEntry::ClassificationNameEntry(const EntryData &entryData, const QString &pairPath)
    : Entry(entryData)
    , linkPath(pairPath)
    , pairManipulationProvider(std::make_shared<ClassificationNameEntryManipulationProvider>(this))
{ }

ClassificationNameEntry::~ClassificationNameEntry() = default;

std::shared_ptr<const Interfaces::DataEntryManipulationInterface>
ClassificationNameEntry::getManipulationInterface() const
{
    return PinnedInterface<const Interfaces::DataEntryManipulationInterface>(*this,
                                                                             pairManipulationProvider.get());
}

std::shared_ptr<Interfaces::DataEntryManipulationInterface>
ClassificationNameEntry::getManipulationInterface()
{
    return PinnedInterface<Interfaces::DataEntryManipulationInterface>(*this, pairManipulationProvider.get());
}

} // namespace Tessellum::AppData::Data::Entries
