#include "NotificationHandle.h"

#include <notification/utils/HandlerWaits.h>
#include <notification/utils/ShortLock.h>

#include <QThread>
#include <QUuid>

namespace Tessellum::Notification::utils {

NotificationHandleBase::NotificationHandleBase(const QString &registeredPath)
    : mutex(QMutex::Recursive)
    , uuid(QUuid::createUuid().toString())
    , path(registeredPath)
{ }

NotificationHandleBase::~NotificationHandleBase() = default;

void NotificationHandleBase::invalidate()
{
    invalidateWithoutWaiting();
    if (!mutex.tryLock()) {
        const HandlerWaits wait(*this);
        if (!wait.isEntered())
            return;
        mutex.lock();
    }
    mutex.unlock();
}

bool NotificationHandleBase::setEnabled(const bool &wanted)
{
    enabled.store(wanted, std::memory_order_release);
    return true;
}

NotificationHandleBase::Running::Running(NotificationHandleBase &running)
    : handle(running)
{
    LockShortly(handle.mutex);
    previous = handle.runner.exchange(QThread::currentThreadId());
}

NotificationHandleBase::Running::~Running()
{
    handle.runner = previous;
    handle.mutex.unlock();
}

} // namespace Tessellum::Notification::utils
