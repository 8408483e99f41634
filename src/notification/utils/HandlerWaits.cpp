#include "HandlerWaits.h"

#include <notification/utils/NotificationHandle.h>

#include <QHash>
#include <QMutex>
#include <QThread>

namespace Tessellum::Notification::utils {

namespace {

struct WaitTable
{
    QMutex mutex;
    QHash<Qt::HANDLE, const NotificationHandleBase *>
        waits; // by the waiting thread, which keeps its handle alive
};

WaitTable &Table()
{
    static auto *const table = new WaitTable; // handlers may run until the process has ended
    return *table;
}

} // namespace

HandlerWaits::HandlerWaits(const NotificationHandleBase &handle)
{
    const Qt::HANDLE self = QThread::currentThreadId();
    WaitTable &table = Table();
    const QMutexLocker locker(&table.mutex);
    for (const NotificationHandleBase *waited = &handle; waited && entered;) {
        const Qt::HANDLE runner = waited->runner;
        entered = runner != self;
        waited = runner ? table.waits.value(runner) : nullptr;
    }
    if (entered)
        table.waits.insert(self, &handle);
}

HandlerWaits::~HandlerWaits()
{
    if (!entered)
        return;
    WaitTable &table = Table();
    const QMutexLocker locker(&table.mutex);
    table.waits.remove(QThread::currentThreadId());
}

} // namespace Tessellum::Notification::utils
