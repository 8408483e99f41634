#include "ObserverCore.h"

namespace Tessellum::Notification::utils {

ObserverCore::~ObserverCore()
{
    end();
}

void ObserverCore::wait()
{
    const QMutexLocker locker(&m_mutex);
    while (!m_finished.load(std::memory_order_relaxed) && !m_ended.load(std::memory_order_relaxed))
        m_condition.wait(&m_mutex);
}

void ObserverCore::end()
{
    const QMutexLocker locker(&m_mutex);
    m_ended.store(true, std::memory_order_release);
    m_condition.wakeAll();
}

void ObserverCore::finishLocked()
{
    m_finished.store(true, std::memory_order_release);
    m_condition.wakeAll();
}

} // namespace Tessellum::Notification::utils
