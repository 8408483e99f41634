#pragma once

#include <appdata/interfaces/DataEntryInterface.h>
#include <shared/TessellumExport.h>

#include <memory>

class QDeadlineTimer;

namespace Tessellum::AppData {

/*! Waits while an entry that was attached gets the elements that its storage holds. True once they are there;
 * false for null, if they cannot be read or if \a deadline passes. Any thread, with no lock held; no events
 * of the calling thread are handled meanwhile. */
TESSELLUM_EXPORT bool WaitUntilLoaded(const std::shared_ptr<const Interfaces::DataEntryInterface> &entry,
                                      const QDeadlineTimer &deadline);

} // namespace Tessellum::AppData
