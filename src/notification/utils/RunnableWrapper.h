#pragma once

#include <notification/utils/TrackedRunnable.h>

#include <utility>

namespace Tessellum::Notification {
class ThreadPool;
}

namespace Tessellum::Notification::utils {

/*!
 * Marks the calling thread as one that runs something for \a pool while the object lives. These marks nest: a
 * thread may run what it waits for.
 */
class TESSELLUM_EXPORT CurrentPool
{
public:
    explicit CurrentPool(ThreadPool *pool);
    ~CurrentPool();
    Q_DISABLE_COPY(CurrentPool)

    /*! The pool whose thread this is, or null. */
    static ThreadPool *Outermost();
    /*! True if the calling thread runs something for \a pool. */
    static bool Contains(const ThreadPool *pool);

private:
    ThreadPool *const m_pool;
    const CurrentPool *const m_outer;
};

/*!
 * Carries one runnable through a ThreadPool: counts it while it is queued, ends its observer when it is over
 * or discarded, and stays for a later clean-up, since nothing may be deleted from inside its own run().
 */
template <class Runnable>
class RunnableWrapper final : public TrackedRunnable
{
public:
    RunnableWrapper(ThreadPool *pool, std::unique_ptr<Runnable> runnable,
                    std::shared_ptr<ObserverCore> observer, std::shared_ptr<RunnableCounter> counter)
        : TrackedRunnable(std::move(observer), std::move(counter), runnable->describe())
        , m_pool(pool)
        , m_runnable(std::move(runnable))
    { }

    ~RunnableWrapper() override { end(); }

    /*! Runs the runnable, ends the observer, deletes the runnable. May run on a thread that waits for it. */
    void run() override
    {
        {
            const CurrentPool current(m_pool);
            begin();
            m_runnable->run(); // catches all that is thrown in it
            end();
            m_runnable.reset();
        }
        finish();
    }

private:
    ThreadPool *const m_pool;
    std::unique_ptr<Runnable> m_runnable;
};

} // namespace Tessellum::Notification::utils
