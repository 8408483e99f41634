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
    std::unique_ptr<std::function<void()>> function;
    {
        const QMutexLocker locker(&mutex);
        ended.store(true, std::memory_order_release);
        function = std::move(endFunction);
        condition.wakeAll();
    }
    if (function)
        (*function)();
}

void ObserverCore::whenEnded(std::function<void()> function)
{
    {
        const QMutexLocker locker(&mutex);
        if (!isEnded()) {
            endFunction = std::make_unique<std::function<void()>>(std::move(function));
            return;
        }
    }
    function();
}

void ObserverCore::finishLocked()
{
    finished.store(true, std::memory_order_release);
    condition.wakeAll();
}

} // namespace Tessellum::Notification::utils
