#include "NotificationProvider.h"

namespace Tessellum::Notification::utils {

namespace {

template <class Point>
NotificationProvider::HandlePointer Register(const std::shared_ptr<ExaminerRegistration<Point>> &registration,
                                             const QString &path, const HandlerFunction<Point> &handler,
                                             const Point &point)
{
    const auto inner = std::make_shared<NotificationHandle<HandlerFunction<Point>>>(path, handler);
    const auto endRegistration = [table = std::weak_ptr<ExaminerRegistration<Point>>(registration),
                                  uuid = inner->getUuid()](WrappedNotificationHandle *wrapped) {
        const std::unique_ptr<WrappedNotificationHandle> owner(wrapped);
        if (const auto living = table.lock())
            living->unregisterEventHandler(uuid);
    };
    const std::shared_ptr<WrappedNotificationHandle> wrapped(new WrappedNotificationHandle(inner),
                                                             endRegistration);
    if (registration->registerEventHandler(wrapped, point) != 1)
        return nullptr;
    return wrapped;
}

} // namespace

NotificationProvider::NotificationProvider()
    : createRegistration(std::make_shared<ExaminerRegistration<CreatePoint>>(PointMatches<CreatePoint>))
    , updateRegistration(std::make_shared<ExaminerRegistration<UpdatePoint>>(PointMatches<UpdatePoint>))
    , deleteRegistration(std::make_shared<ExaminerRegistration<DeletePoint>>(PointMatches<DeletePoint>))
{ }

NotificationProvider::HandlePointer NotificationProvider::registerCreateHandler(const QString &path,
                                                                                const CreateHandler &handler,
                                                                                const CreatePoint &point)
{
    return Register(createRegistration, path, handler, point);
}

NotificationProvider::HandlePointer NotificationProvider::registerUpdateHandler(const QString &path,
                                                                                const UpdateHandler &handler,
                                                                                const UpdatePoint &point)
{
    return Register(updateRegistration, path, handler, point);
}

NotificationProvider::HandlePointer NotificationProvider::registerDeleteHandler(const QString &path,
                                                                                const DeleteHandler &handler,
                                                                                const DeletePoint &point)
{
    return Register(deleteRegistration, path, handler, point);
}

bool NotificationProvider::unregisterCreateHandler(const QString &uuid)
{
    return createRegistration->unregisterEventHandler(uuid);
}

bool NotificationProvider::unregisterUpdateHandler(const QString &uuid)
{
    return updateRegistration->unregisterEventHandler(uuid);
}

bool NotificationProvider::unregisterDeleteHandler(const QString &uuid)
{
    return deleteRegistration->unregisterEventHandler(uuid);
}

} // namespace Tessellum::Notification::utils
