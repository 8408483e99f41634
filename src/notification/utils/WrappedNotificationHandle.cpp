#include "WrappedNotificationHandle.h"

#include <utility>

namespace Tessellum::Notification::utils {

WrappedNotificationHandle::WrappedNotificationHandle(std::shared_ptr<NotificationHandleBase> owned)
    : handle(std::move(owned))
    , weakHandle(handle)
{ }

WrappedNotificationHandle::~WrappedNotificationHandle()
{
    WrappedNotificationHandle::invalidate();
}

void WrappedNotificationHandle::invalidate()
{
    const std::shared_ptr<NotificationHandleBase> inner = weakHandle.lock();
    std::shared_ptr<NotificationHandleBase> owned;
    {
        const QWriteLocker locker(&lock);
        owned.swap(handle);
    }
    // Behind the lock: the running handler may use this very object. Also where another thread let the handle
    // go before, since each call promises that the handler has ended.
    if (inner)
        inner->invalidate();
}

bool WrappedNotificationHandle::isValid() const
{
    const auto inner = weakHandle.lock();
    return inner && inner->isValid();
}

int WrappedNotificationHandle::getHandleType() const
{
    const auto inner = weakHandle.lock();
    return inner ? inner->getHandleType() : 0;
}

bool WrappedNotificationHandle::isEnabled() const
{
    const auto inner = weakHandle.lock();
    return inner && inner->isEnabled();
}

QString WrappedNotificationHandle::getUuid() const
{
    const auto inner = weakHandle.lock();
    return inner ? inner->getUuid() : QString();
}

QString WrappedNotificationHandle::getPath() const
{
    const auto inner = weakHandle.lock();
    return inner ? inner->getPath() : QString();
}

bool WrappedNotificationHandle::setEnabled(const bool &enabled)
{
    const auto inner = weakHandle.lock();
    return inner && inner->setEnabled(enabled);
}

std::shared_ptr<NotificationHandleBase> WrappedNotificationHandle::getHandle() const
{
    const QReadLocker locker(&lock);
    return handle;
}

} // namespace Tessellum::Notification::utils
