#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/storages/utils/DetachEntry.h>

namespace Tessellum::AppData::Storages::utils {

void DetachEntry(const std::shared_ptr<Data::Entries::Entry> &entry)
{
    Data::Entries::utils::UnlinkEntryFromPair(entry);
    entry->setDeleteFlag();
    entry->getMemoryStrategyInterface()->removeMemoryStrategy();
}

} // namespace Tessellum::AppData::Storages::utils
