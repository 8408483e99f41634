#include <appdata/EntryLoading.h>

#include <QDeadlineTimer>
#include <QThread>

namespace Tessellum::AppData {

bool WaitUntilLoaded(const std::shared_ptr<const Interfaces::DataEntryInterface> &entry,
                     const QDeadlineTimer &deadline)
{
    // The status is all that a handle has in common with the entry behind it, which may go at any time.
    while (entry && entry->getLoadStatus() == LoadStatus::CurrentlyLoading && !deadline.hasExpired())
        QThread::msleep(1);
    return entry && entry->getLoadStatus() == LoadStatus::Loaded;
}

} // namespace Tessellum::AppData
