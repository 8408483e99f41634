#pragma once

#include <notification/HandlerFunctions.h>
#include <notification/NotificationThreadPool.h>

#include <memory>

namespace Tessellum::Notification {

/*! Leads from an examiner to one handler, which it holds weakly. Any thread may call. */
class TESSELLUM_EXPORT ExaminerConnection
{
public:
    explicit ExaminerConnection(const std::shared_ptr<utils::NotificationHandleBase> &target);
    /*! Logs; never called with a lock held. */
    ~ExaminerConnection();
    Q_DISABLE_COPY(ExaminerConnection)

    /*!
     * Queues a call of the handler with path, point and result, for updates also old and new value. Nothing
     * happens if the handler has gone, is disabled or is of another kind, or if the pool is stopped.
     */
    template <class Point, class... Arguments>
    void notify(const QString &path, const Point &point, const Arguments &...arguments) const
    {
        using Handle = utils::NotificationHandle<HandlerFunction<Point>>;
        const auto target = std::dynamic_pointer_cast<Handle>(handle.lock());
        if (target && target->isEnabled())
            NotificationThreadPool().startHandler(target, path, point, arguments...);
    }

    /*! The handle, or null once it has gone. */
    std::shared_ptr<utils::NotificationHandleBase> getHandle() const { return handle.lock(); }

private:
    const std::weak_ptr<utils::NotificationHandleBase> handle;
};

} // namespace Tessellum::Notification
