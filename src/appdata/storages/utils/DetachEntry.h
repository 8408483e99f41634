#pragma once

#include <appdata/data/entries/Entry.h>

#include <memory>

namespace Tessellum::AppData::Storages::utils {

/*! Takes \a entry with its strategy off the tree and out of its pair and leaves the medium alone. Whoever
 * still holds it finds it dead, or its values would miss the entry that is attached next. No lock may be
 * held. */
void DetachEntry(const std::shared_ptr<Data::Entries::Entry> &entry);

} // namespace Tessellum::AppData::Storages::utils
