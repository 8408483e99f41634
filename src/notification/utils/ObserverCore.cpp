#include "ObserverCore.h"

namespace Tessellum::Notification::utils {

ObserverCore::~ObserverCore()
{
    end();
}

void ObserverCore::wait()
{
    const QMutexLocker locker(&mutex);
    while (!finished.load(std::memory_order_relaxed) && !ended.load(std::memory_order_relaxed))
        condition.wait(&mutex);
}

void ObserverCore::end()
{
    const QMutexLocker locker(&mutex);
    ended.store(true, std::memory_order_release);
    condition.wakeAll();
}

void ObserverCore::finishLocked()
{
    finished.store(true, std::memory_order_release);
    condition.wakeAll();
}

} // namespace Tessellum::Notification::utils
