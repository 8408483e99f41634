#include <shared/foundation/platform/UserIdentity.h>
#include <shared/logging/utils/LogSemaphore.h>

namespace Shared::Logging::utils {

LogSemaphore::LogSemaphore(const QString &key_)
    : key(key_)
    , semaphore(key_)
{ }

bool LogSemaphore::acquire(QDeadlineTimer deadline)
{
    while (!absent) {
        const SystemSemaphore::Result result = semaphore.acquire(deadline);
        if (result != SystemSemaphore::Result::Denied)
            return result == SystemSemaphore::Result::Acquired;
        fallBack();
    }
    return true;
}

bool LogSemaphore::isHeldByThisProcess()
{
    while (!absent) {
        const SystemSemaphore::Result result = semaphore.peek();
        if (result != SystemSemaphore::Result::Denied)
            return result == SystemSemaphore::Result::Acquired;
        fallBack();
    }
    return false;
}

void LogSemaphore::release()
{
    if (!absent)
        semaphore.release();
}

void LogSemaphore::remove()
{
    if (!absent)
        semaphore.remove();
}

void LogSemaphore::fallBack()
{
    if (ownName) {
        absent = true;
    } else {
        ownName = true;
        semaphore = SystemSemaphore(key + Foundation::Platform::UserKeySuffix());
    }
}

} // namespace Shared::Logging::utils
