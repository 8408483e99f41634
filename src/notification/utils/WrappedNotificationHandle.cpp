#include "WrappedNotificationHandle.h"

#include <utility>

namespace Tessellum::Notification::utils {

WrappedNotificationHandle::WrappedNotificationHandle(std::shared_ptr<NotificationHandleBase> handle)
    : m_handle(std::move(handle))
    , m_weakHandle(m_handle)
{ }

WrappedNotificationHandle::~WrappedNotificationHandle()
{
    WrappedNotificationHandle::invalidate();
}

void WrappedNotificationHandle::invalidate()
{
    std::shared_ptr<NotificationHandleBase> handle = m_weakHandle.lock();
    std::shared_ptr<NotificationHandleBase> owned;
    {
        const QWriteLocker locker(&m_lock);
        owned.swap(m_handle);
    }
    // Behind the lock: the running handler may use this very object. Also where another thread let the handle
    // go before, since each call promises that the handler has ended.
    if (handle)
        handle->invalidate();
}

bool WrappedNotificationHandle::isValid() const
{
    const auto handle = m_weakHandle.lock();
    return handle && handle->isValid();
}

int WrappedNotificationHandle::getHandleType() const
{
    const auto handle = m_weakHandle.lock();
    return handle ? handle->getHandleType() : 0;
}

bool WrappedNotificationHandle::isEnabled() const
{
    const auto handle = m_weakHandle.lock();
    return handle && handle->isEnabled();
}

QString WrappedNotificationHandle::getUuid() const
{
    const auto handle = m_weakHandle.lock();
    return handle ? handle->getUuid() : QString();
}

QString WrappedNotificationHandle::getPath() const
{
    const auto handle = m_weakHandle.lock();
    return handle ? handle->getPath() : QString();
}

bool WrappedNotificationHandle::setEnabled(const bool &enabled)
{
    const auto handle = m_weakHandle.lock();
    return handle && handle->setEnabled(enabled);
}

std::shared_ptr<NotificationHandleBase> WrappedNotificationHandle::getHandle() const
{
    const QReadLocker locker(&m_lock);
    return m_handle;
}

} // namespace Tessellum::Notification::utils
