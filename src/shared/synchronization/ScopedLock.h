#pragma once

#include <shared/synchronization/Lockable.h>

#include <memory>

namespace Shared::Synchronization {

/*! Holds the lock of a Lockable for a scope. Made from a shared pointer it also keeps the object alive; made
 * from a raw pointer it leaves that to the caller. A null target is accepted and locks nothing. */
class TESSELLUM_EXPORT ScopedLock
{
public:
    explicit ScopedLock(const std::shared_ptr<const Lockable> &lockable)
        : owner(lockable)
        , target(lockable.get())
    {
        if (target)
            target->lock();
    }
    explicit ScopedLock(const Lockable *lockable)
        : target(lockable)
    {
        if (target)
            target->lock();
    }
    virtual ~ScopedLock()
    {
        if (target)
            target->unlock();
    }
    ScopedLock(const ScopedLock &) = delete;
    ScopedLock &operator=(const ScopedLock &) = delete;

private:
    const std::shared_ptr<const Lockable> owner;
    const Lockable *const target;
};

} // namespace Shared::Synchronization
