#include <shared/logging/utils/LogLock.h>

#include <QDeadlineTimer>
#include <QThread>

namespace Shared::Logging::utils {

namespace {

constexpr int closeTimeout = 2000; // milliseconds, for each of the two locks

thread_local bool insideThisCopy = false;

} // namespace

LogLock::LogLock(const QString &semaphoreKey)
    : semaphore(semaphoreKey)
{ }

bool LogLock::IsInsideThisCopy()
{
    return insideThisCopy;
}

bool LogLock::isInside() const
{
    return insideThisCopy
        || (sharedOwner && sharedOwner->load(std::memory_order_relaxed) == QThread::currentThreadId());
}

void LogLock::close(const std::function<bool()> &letGo)
{
    // exit() inside a filter comes here from within the section, of this copy or of another.
    const bool inside = insideThisCopy;
    const bool insideOther = !inside && isInside();
    if (!inside && !mutex.tryLock(closeTimeout))
        return;
    insideThisCopy = true;
    closed = true;
    if (inside || insideOther || semaphore.acquire(QDeadlineTimer(closeTimeout))) {
        // Inside the section: whoever is about to attach waits for it, and has to make a new semaphore.
        if (letGo())
            semaphore.remove();
        else if (!insideOther)
            semaphore.release();
    }
    insideThisCopy = inside;
    if (!inside)
        mutex.unlock();
}

LogLock::Section::Section(LogLock &lock_)
    : lock(lock_)
    , nested(lock_.isInside())
    , outermost(!insideThisCopy)
{
    insideThisCopy = true; // before the locks: Qt may have something to say about them
    if (nested)
        return;
    lock.mutex.lock();
    entered = !lock.closed && lock.semaphore.acquire();
    if (!entered) {
        lock.mutex.unlock();
        return;
    }
    owner = lock.sharedOwner;
    if (owner)
        *owner = QThread::currentThreadId();
}

LogLock::Section::~Section()
{
    if (entered) {
        if (owner)
            *owner = nullptr;
        lock.semaphore.release();
        lock.mutex.unlock();
    }
    if (outermost)
        insideThisCopy = false;
}

} // namespace Shared::Logging::utils
