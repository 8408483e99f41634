#pragma once

#include <notification/TaskPoints.h>
#include <notification/utils/ObserverCore.h>

#include <functional>
#include <optional>
#include <utility>

namespace Tessellum::Notification {

/*!
 * What a task reports to, and what a caller waits on.
 *
 * The task holds it in a shared pointer and reports from its own thread; any thread may wait or read. The two
 * functions are set before the task starts and are called without a lock.
 *
 * \code
 * const auto observer = pool.startUpdateTask(node, 3.5, UpdatePoint::Done);
 * if (observer && observer->waitForResult() == UpdateObserver::ResultType(UpdatePoint::Done,
 * UpdateResult::Ok))
 *     ...
 * \endcode
 */
template <class Result>
class Observer : public utils::ObserverCore
{
public:
    using ResultType = Result;

    /*! Tells whether a report reaches the wait point. report() throws std::bad_function_call if it is empty.
     */
    std::function<bool(const ResultType &)> isFinished;
    /*! Called after those who wait were released; sends the notification of the point. May be empty. */
    std::function<void(const ResultType &)> onResult;

    Observer() = default;
    Observer(std::function<bool(const ResultType &)> finishedBy,
             std::function<void(const ResultType &)> resultHandler = {})
        : isFinished(std::move(finishedBy))
        , onResult(std::move(resultHandler))
    { }

    /*! Stores \a reported, releases those who wait if it reaches the wait point, then calls onResult. */
    void report(const ResultType &reported)
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            result = reported;
        }
        if (isFinished(reported)) {
            {
                const std::lock_guard<std::mutex> lock(mutex);
                if (!released)
                    released = reported;
                finishLocked();
            }
            wake();
        }
        if (onResult)
            onResult(reported);
    }

    /*! The last report, or zeroes before the first. */
    ResultType getResult() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return result;
    }

    /*! Waits as wait() does and returns the report that ended the wait; nothing if the task ended without it.
     */
    std::optional<ResultType> waitForResult()
    {
        wait();
        const std::lock_guard<std::mutex> lock(mutex);
        return released;
    }

private:
    ResultType result{};
    std::optional<ResultType> released;
};

using CreateObserver = Observer<QPair<CreatePoint, bool>>;
using UpdateObserver = Observer<QPair<UpdatePoint, UpdateResult>>;
using DeleteObserver = Observer<QPair<DeletePoint, bool>>;

} // namespace Tessellum::Notification

// Under these names, so that QMetaType::typeName() gives them; they must precede every use of the types in a
// QVariant, where Qt would name them after the pair.
Q_DECLARE_METATYPE(Tessellum::Notification::CreateObserver::ResultType)
Q_DECLARE_METATYPE(Tessellum::Notification::UpdateObserver::ResultType)
Q_DECLARE_METATYPE(Tessellum::Notification::DeleteObserver::ResultType)
