#include "NotificationHandle.h"

#include <notification/utils/HandlerWaits.h>

#include <QThread>
#include <QUuid>

namespace Tessellum::Notification::utils {

NotificationHandleBase::NotificationHandleBase(const QString &path)
    : m_mutex(QMutex::Recursive)
    , m_uuid(QUuid::createUuid().toString())
    , m_path(path)
{ }

NotificationHandleBase::~NotificationHandleBase() = default;

void NotificationHandleBase::invalidate()
{
    invalidateWithoutWaiting();
    if (!m_mutex.tryLock()) {
        const HandlerWaits wait(*this);
        if (!wait.isEntered())
            return;
        m_mutex.lock();
    }
    m_mutex.unlock();
}

bool NotificationHandleBase::setEnabled(const bool &enabled)
{
    m_enabled.store(enabled, std::memory_order_release);
    return true;
}

NotificationHandleBase::Running::Running(NotificationHandleBase &handle)
    : m_handle(handle)
{
    m_handle.m_mutex.lock();
    m_previous = m_handle.m_runner.exchange(QThread::currentThreadId());
}

NotificationHandleBase::Running::~Running()
{
    m_handle.m_runner = m_previous;
    m_handle.m_mutex.unlock();
}

} // namespace Tessellum::Notification::utils
