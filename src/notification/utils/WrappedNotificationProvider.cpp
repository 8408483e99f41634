#include "WrappedNotificationProvider.h"

#include <notification/utils/NotificationProvider.h>

namespace Tessellum::Notification::utils {

WrappedNotificationProvider::WrappedNotificationProvider(
    const std::shared_ptr<NotificationProvider> &provider, QReadWriteLock *lock)
    : m_provider(provider)
    , m_lock(lock)
{ }

std::shared_ptr<NotificationProvider> WrappedNotificationProvider::provider() const
{
    const QWriteLocker locker(m_lock);
    return m_provider.lock();
}

WrappedNotificationProvider::HandlePointer
WrappedNotificationProvider::registerCreateHandler(const QString &path, const CreateHandler &handler,
                                                   const CreatePoint &point)
{
    const auto target = provider();
    return target ? target->registerCreateHandler(path, handler, point) : nullptr;
}

WrappedNotificationProvider::HandlePointer
WrappedNotificationProvider::registerUpdateHandler(const QString &path, const UpdateHandler &handler,
                                                   const UpdatePoint &point)
{
    const auto target = provider();
    return target ? target->registerUpdateHandler(path, handler, point) : nullptr;
}

WrappedNotificationProvider::HandlePointer
WrappedNotificationProvider::registerDeleteHandler(const QString &path, const DeleteHandler &handler,
                                                   const DeletePoint &point)
{
    const auto target = provider();
    return target ? target->registerDeleteHandler(path, handler, point) : nullptr;
}

bool WrappedNotificationProvider::unregisterCreateHandler(const QString &uuid)
{
    const auto target = provider();
    return target && target->unregisterCreateHandler(uuid);
}

bool WrappedNotificationProvider::unregisterUpdateHandler(const QString &uuid)
{
    const auto target = provider();
    return target && target->unregisterUpdateHandler(uuid);
}

bool WrappedNotificationProvider::unregisterDeleteHandler(const QString &uuid)
{
    const auto target = provider();
    return target && target->unregisterDeleteHandler(uuid);
}

} // namespace Tessellum::Notification::utils
