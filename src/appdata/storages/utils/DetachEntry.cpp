#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/storages/utils/DetachEntry.h>

namespace Tessellum::AppData::Storages::utils {

void DetachEntry(const std::shared_ptr<Data::Entries::Entry> &entry)
{
    Data::Entries::utils::UnlinkEntryFromPair(entry);
    const auto strategies = entry->getMemoryStrategyInterface();
    // Before the flag, or it could take away what the next attachment of the entry shows; and after it what
    // has been installed in between.
    strategies->removeMemoryStrategy();
    entry->setDeleteFlag();
    strategies->removeMemoryStrategy();
}

} // namespace Tessellum::AppData::Storages::utils
