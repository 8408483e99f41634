#pragma once

#include <notification/interfaces/NotificationInterface.h>
#include <shared/TessellumExport.h>

#include <QReadWriteLock>

#include <memory>

namespace Tessellum::Notification::utils {

class NotificationProvider;

/*!
 * The front of a NotificationProvider that a repository hands out. After the repository has stopped every
 * operation fails. Lock: the repository's, held to get hold of the provider and not while it works.
 */
class TESSELLUM_EXPORT WrappedNotificationProvider : public Interfaces::NotificationInterface
{
public:
    /*! \a repositoryLock is not owned and outlives the object. */
    WrappedNotificationProvider(const std::shared_ptr<NotificationProvider> &notifications,
                                QReadWriteLock *repositoryLock);

    HandlePointer registerCreateHandler(const QString &path, const CreateHandler &handler,
                                        const CreatePoint &point) override;
    HandlePointer registerUpdateHandler(const QString &path, const UpdateHandler &handler,
                                        const UpdatePoint &point) override;
    HandlePointer registerDeleteHandler(const QString &path, const DeleteHandler &handler,
                                        const DeletePoint &point) override;
    bool unregisterCreateHandler(const QString &uuid) override;
    bool unregisterUpdateHandler(const QString &uuid) override;
    bool unregisterDeleteHandler(const QString &uuid) override;

private:
    std::shared_ptr<NotificationProvider> heldProvider() const;

    const std::weak_ptr<NotificationProvider> provider;
    QReadWriteLock *const lock;
};

} // namespace Tessellum::Notification::utils
