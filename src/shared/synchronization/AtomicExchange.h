#pragma once

#include <shared/synchronization/ScopedLock.h>

#include <atomic>
#include <memory>

namespace Shared {

/*!
 * Hands a value from a writer to a reader: stage() lays it down, commit() publishes the last one laid down.
 *
 * Threads: any. The lock of this object, which is not recursive, guards both values.
 */
template <class T>
class TESSELLUM_EXPORT AtomicExchange : public Synchronization::Lockable
{
public:
    explicit AtomicExchange(const T &initial = T())
        : Lockable(nullptr, QMutex::NonRecursive)
        , value(initial)
        , staged(initial)
    { }
    ~AtomicExchange() override = default;

    /*! Lays \a next down for the next commit. */
    void stage(const T &next)
    {
        const Synchronization::ScopedLock lock(this);
        if (staged == next)
            return;
        staged = next;
        dirty.store(true, std::memory_order_release);
    }

    /*! Publishes what was staged and returns the published value. */
    T commit()
    {
        commitLock = std::make_unique<Synchronization::ScopedLock>(this);
        if (dirty.exchange(false, std::memory_order_acquire))
            value = staged;
        const T published = value;
        const auto release = std::move(commitLock);
        return published;
    }

private:
    T value;
    T staged;
    std::atomic<bool> dirty{false};
    std::unique_ptr<Synchronization::ScopedLock> commitLock;
};

} // namespace Shared
