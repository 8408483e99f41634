#pragma once

#include <notification/ThreadPool.h>

#include <optional>

namespace Tessellum::Notification::utils {

/*!
 * Keeps a wait on a thread of a task pool from holding up the pool. The constructor runs the awaited task on
 * the calling thread if it is still queued; if another thread has it, this thread's place is lent to a
 * further thread until the destructor. Does nothing on threads that belong to no task pool.
 */
class TESSELLUM_EXPORT PlaceLender
{
public:
    /*! \a pool is the one that started the task of \a observer. */
    PlaceLender(ThreadPool &pool, const ObserverCore &observer);
    /*! For a wait on something else than a task: lends the place at once. */
    PlaceLender();
    ~PlaceLender();
    Q_DISABLE_COPY(PlaceLender)

private:
    void lend();

    ThreadPool *lent = nullptr;
};

/*!
 * Waits for a task that \a pool started and returns the report that reached its wait point; nothing if the
 * task ended without one (discarded, died of an exception) or \a observer is empty. Any thread may call, one
 * of the pool included; no lock may be held.
 */
template <class Result>
std::optional<Result> WaitForTask(ThreadPool &pool, const std::shared_ptr<Observer<Result>> &observer)
{
    if (!observer)
        return std::nullopt;
    const PlaceLender lender(pool, *observer);
    return observer->waitForResult();
}

/*! As WaitForTask(): true if the report that ended the wait told of no fault. */
template <class Result>
bool WaitForSuccess(ThreadPool &pool, const std::shared_ptr<Observer<Result>> &observer)
{
    const auto report = WaitForTask(pool, observer);
    return report && !IsFault(report->second);
}

} // namespace Tessellum::Notification::utils
