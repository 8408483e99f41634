#include "ObserverCore.h"

namespace Tessellum::Notification::utils {

ObserverCore::~ObserverCore()
{
    end();
}

void ObserverCore::wait()
{
    std::unique_lock<std::mutex> lock(mutex);
    condition.wait(lock, [this] { return hasFinished() || isEnded(); });
}

void ObserverCore::end()
{
    if (isEnded())
        return;
    std::unique_ptr<std::function<void()>> function;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ended.store(true, std::memory_order_release);
        function = std::move(endFunction);
    }
    wake();
    if (function)
        (*function)();
}

void ObserverCore::whenEnded(std::function<void()> function)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!isEnded()) {
            endFunction = std::make_unique<std::function<void()>>(std::move(function));
            return;
        }
    }
    function();
}

} // namespace Tessellum::Notification::utils
