#include <shared/synchronization/Lockable.h>

#include <QMetaMethod>

#include <utility>

namespace Shared::Synchronization {

Lockable::Lockable(QObject *parent, const QMutex::RecursionMode &mode)
    : QObject(parent)
    , isRecursive(mode == QMutex::Recursive)
{ }

Lockable::~Lockable() = default;

bool Lockable::isLocked() const
{
    return lockCount.load(std::memory_order_acquire) != 0;
}

int Lockable::lock() const
{
    const std::thread::id self = std::this_thread::get_id();
    if (!isRecursive || lockOwner.load(std::memory_order_relaxed) != self) {
        lockMutex.lock();
        lockOwner.store(self, std::memory_order_relaxed);
    }
    // Only the holder writes the count: a plain read and write, atomic for those who look on. That the read
    // acquires what the last holder released says again what the mutex says, to tools that cannot look into
    // it.
    const int depth = lockCount.load(std::memory_order_acquire) + 1;
    lockCount.store(depth, std::memory_order_release);
    if (depth == 1 && hasListener.load(std::memory_order_relaxed))
        Q_EMIT locked();
    return depth;
}

int Lockable::unlock() const
{
    const int depth = lockCount.load(std::memory_order_relaxed) - 1;
    lockCount.store(depth, std::memory_order_release);
    if (depth > 0)
        return depth;
    if (hasListener.load(std::memory_order_relaxed) && !announceRelease())
        return depth;
    lockOwner.store(std::thread::id(), std::memory_order_relaxed);
    lockMutex.unlock();
    return depth;
}

// Emits unlocked(); false where the mutex must stay taken: a slot has kept a level, or this call comes from a
// slot of an outer unlock() that has the mutex still to give back.
bool Lockable::announceRelease() const
{
    const bool isNested = std::exchange(isReleasing, true);
    Q_EMIT unlocked();
    isReleasing = isNested;
    return !isNested && lockCount.load(std::memory_order_relaxed) == 0;
}

int Lockable::lockLevel() const
{
    return lockCount.load(std::memory_order_relaxed);
}

void Lockable::connectNotify(const QMetaMethod &signal)
{
    if (signal == QMetaMethod::fromSignal(&Lockable::locked)
        || signal == QMetaMethod::fromSignal(&Lockable::unlocked))
        hasListener.store(true, std::memory_order_relaxed);
}

} // namespace Shared::Synchronization
