#pragma once

#include <appdata/data/elements/ElementUpdateData.h>

#include <QStringList>

#include <memory>

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::Data::Entries::utils {

/*! Creates \a elements, what an ElementsCreateTask takes, in \a entry without waiting. Their end sets the
 * entry's status to loaded, or to not loaded where none could be created or the task was discarded. */
void StartElementJob(const std::shared_ptr<Entry> &entry, const QVariant &elements);

/*! What makes copies of those elements of \a source, an entry or a pair, whose uuids are listed and that \a
 * destination lacks, in the order of the source. */
Elements::ElementUpdateDataList CopiesOfElements(Entry &source, const Entry &destination,
                                                 const QStringList &uuids);

} // namespace Tessellum::AppData::Data::Entries::utils
