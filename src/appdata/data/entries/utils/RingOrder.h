#pragma once

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::Data::Entries::utils {

/*! Lets the next overwrite of a full ring land on the element with the smallest time stamp: a ring that was
 * read from a storage may have gone round, and where it stood is not stored. */
void PointRingAtOldest(Entry &entry);

} // namespace Tessellum::AppData::Data::Entries::utils
