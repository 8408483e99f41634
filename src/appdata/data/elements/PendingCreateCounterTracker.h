#pragma once

#include <shared/TessellumExport.h>

#include <QtGlobal>

#include <atomic>
#include <memory>

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::Data::Elements {

/*!
 * Counts the elements that a task is still going to create in the entry's pendingCreates, so that the
 * capacity also knows of what is queued. What is left at its end is taken off again. Threads: any; no lock.
 */
class TESSELLUM_EXPORT PendingCreateCounterTracker
{
public:
    /*! Counts \a number at once; \a entry may be null. */
    PendingCreateCounterTracker(const std::shared_ptr<Entries::Entry> &counted, quint32 number);
    ~PendingCreateCounterTracker();
    Q_DISABLE_COPY(PendingCreateCounterTracker)

    /*! One creation is over. */
    void finishOne();
    /*! All creations are over. */
    void finishAll();
    quint32 open() const { return remaining.load(); }

private:
    void release(quint32 number) const;

    const std::weak_ptr<Entries::Entry> entry;
    std::atomic<quint32> remaining;
};

} // namespace Tessellum::AppData::Data::Elements
