#include "RepositoryLocks.h"

namespace Tessellum::Core {

// Never destroyed: wrappers may be called until the process has ended.

QReadWriteLock &appConfigLock()
{
    static auto *const lock = new QReadWriteLock;
    return *lock;
}

QReadWriteLock &appDataLock()
{
    static auto *const lock = new QReadWriteLock;
    return *lock;
}

QReadWriteLock &pluginPathLock()
{
    static auto *const lock = new QReadWriteLock;
    return *lock;
}

} // namespace Tessellum::Core
