#include <shared/foundation/platform/UserIdentity.h>
#include <shared/logging/utils/LogSemaphore.h>

namespace Shared::Logging::utils {

namespace {

// The process that made the semaphore removes it at its end; who waits then finds it gone and makes a new
// one, which fails for moments while several do so at once.
constexpr int attempts = 20;

} // namespace

LogSemaphore::LogSemaphore(const QString &key_)
    : key(key_)
    , semaphore(std::make_unique<QSystemSemaphore>(key_, 1, QSystemSemaphore::Open))
{ }

bool LogSemaphore::acquire()
{
    for (int attempt = 0; attempt < attempts && semaphore; ++attempt) {
        if (absent || semaphore->acquire())
            return true;
        if (semaphore->error() == QSystemSemaphore::PermissionDenied)
            fallBack();
    }
    return false;
}

void LogSemaphore::release()
{
    if (semaphore && !absent)
        semaphore->release();
}

void LogSemaphore::close()
{
    semaphore.reset();
}

void LogSemaphore::fallBack()
{
    if (ownName) {
        absent = true;
    } else {
        ownName = true;
        semaphore = std::make_unique<QSystemSemaphore>(key + Foundation::Platform::UserKeySuffix(), 1,
                                                       QSystemSemaphore::Open);
    }
}

} // namespace Shared::Logging::utils
