#pragma once

#include <shared/TessellumExport.h>

#include <QtGlobal>

namespace Tessellum::Notification {
class ThreadPool;
}

namespace Tessellum::Notification::utils {

/*!
 * Marks the calling thread as one that runs something for a pool while the object lives. These marks nest: a
 * thread may run what it waits for.
 */
class TESSELLUM_EXPORT CurrentPool
{
public:
    explicit CurrentPool(ThreadPool *current);
    ~CurrentPool();
    Q_DISABLE_COPY(CurrentPool)

    /*! The pool whose thread this is, or null. */
    static ThreadPool *Outermost();
    /*! True if the calling thread runs something for \a sought. */
    static bool Contains(const ThreadPool *sought);

private:
    ThreadPool *const pool;
    const CurrentPool *const outer;
};

} // namespace Tessellum::Notification::utils
