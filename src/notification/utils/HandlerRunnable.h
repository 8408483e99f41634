#pragma once

#include <notification/utils/ExceptionBarrier.h>
#include <notification/utils/NotificationHandle.h>
#include <notification/utils/TaskDescription.h>
#include <notification/utils/TaskInfoInterface.h>

#include <QRunnable>

#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>

namespace Tessellum::Notification::utils {

template <class Handler>
struct HandlerArguments;
template <class... Arguments>
struct HandlerArguments<std::function<void(Arguments...)>>
{
    using Type = std::tuple<std::decay_t<Arguments>...>;
};

/*! The description of a call of \a handle. */
TESSELLUM_EXPORT TaskDescription DescribeHandler(const std::shared_ptr<const NotificationHandleBase> &handle);

/*! One call of a handler with its arguments. Holds the handle weakly until it runs, strongly while it runs.
 */
template <class Handler>
class HandlerRunnable final : public QRunnable, public TaskInfoInterface
{
public:
    template <class... Arguments>
    explicit HandlerRunnable(const std::weak_ptr<NotificationHandle<Handler>> &target, Arguments &&...values)
        : handle(target)
        , arguments(std::forward<Arguments>(values)...)
    { }

    /*! Calls the handler if its handle is there and enabled. An exception ends here with a CRITICAL line. */
    void run() override
    {
        const auto living = handle.lock();
        if (!living)
            return;
        RunGuarded("HandlerRunnable",
                   [&] { std::apply([&](const auto &...values) { living->call(values...); }, arguments); });
    }

    /*! "Handler runnable taks with path=PATH uuid=UUID", with "<nullptr>" for each where the handle has gone.
     */
    QString getDescription() const override { return describe().text(); }
    TaskDescription describe() const { return DescribeHandler(handle.lock()); }

private:
    const std::weak_ptr<NotificationHandle<Handler>> handle;
    const typename HandlerArguments<Handler>::Type arguments;
};

} // namespace Tessellum::Notification::utils
