#include "WrappedNotificationProvider.h"

#include <notification/utils/NotificationProvider.h>

namespace Tessellum::Notification::utils {

WrappedNotificationProvider::WrappedNotificationProvider(
    const std::shared_ptr<NotificationProvider> &notifications, QReadWriteLock *repositoryLock)
    : provider(notifications)
    , lock(repositoryLock)
{ }

std::shared_ptr<NotificationProvider> WrappedNotificationProvider::heldProvider() const
{
    const QWriteLocker locker(lock);
    return provider.lock();
}

WrappedNotificationProvider::HandlePointer
WrappedNotificationProvider::registerCreateHandler(const QString &path, const CreateHandler &handler,
                                                   const CreatePoint &point)
{
    const auto target = heldProvider();
    return target ? target->registerCreateHandler(path, handler, point) : nullptr;
}

WrappedNotificationProvider::HandlePointer
WrappedNotificationProvider::registerUpdateHandler(const QString &path, const UpdateHandler &handler,
                                                   const UpdatePoint &point)
{
    const auto target = heldProvider();
    return target ? target->registerUpdateHandler(path, handler, point) : nullptr;
}

WrappedNotificationProvider::HandlePointer
WrappedNotificationProvider::registerDeleteHandler(const QString &path, const DeleteHandler &handler,
                                                   const DeletePoint &point)
{
    const auto target = heldProvider();
    return target ? target->registerDeleteHandler(path, handler, point) : nullptr;
}

bool WrappedNotificationProvider::unregisterCreateHandler(const QString &uuid)
{
    const auto target = heldProvider();
    return target && target->unregisterCreateHandler(uuid);
}

bool WrappedNotificationProvider::unregisterUpdateHandler(const QString &uuid)
{
    const auto target = heldProvider();
    return target && target->unregisterUpdateHandler(uuid);
}

bool WrappedNotificationProvider::unregisterDeleteHandler(const QString &uuid)
{
    const auto target = heldProvider();
    return target && target->unregisterDeleteHandler(uuid);
}

} // namespace Tessellum::Notification::utils
