#pragma once

#include <notification/HandlerFunctions.h>
#include <notification/interfaces/NotificationHandleInterface.h>

#include <memory>

namespace Tessellum::Notification::Interfaces {

/*!
 * Registers handlers for what happens in a repository.
 *
 * A handler hears exactly the point that it registered for (the All value: every point) at the paths that its
 * path names; \c * stands for any run of characters and \c ? for one, dots included. Handlers run on
 * threads of the library, several at a time and in no order among themselves; they may call anything, their
 * own unregistration included. An exception that leaves a handler is logged and dropped.
 *
 * \code
 * handle = notifications->registerUpdateHandler("motor.*", [](const QString &path, const UpdatePoint &,
 *         const UpdateResult &, const QVariant &oldValue, const QVariant &newValue) { ... },
 * UpdatePoint::Done); \endcode
 *
 * Any thread may call. Ownership: dropping the last pointer to the handle ends the registration and waits for
 * a running handler. Failure: an empty pointer, or false.
 */
class NotificationInterface
{
public:
    using HandlePointer = std::shared_ptr<NotificationHandleInterface>;

    virtual HandlePointer registerCreateHandler(const QString &path, const CreateHandler &handler,
                                                const CreatePoint &point)
        = 0;
    virtual HandlePointer registerUpdateHandler(const QString &path, const UpdateHandler &handler,
                                                const UpdatePoint &point)
        = 0;
    virtual HandlePointer registerDeleteHandler(const QString &path, const DeleteHandler &handler,
                                                const DeletePoint &point)
        = 0;
    /*! Ends a registration by the uuid of its handle without waiting for a running handler. */
    virtual bool unregisterCreateHandler(const QString &uuid) = 0;
    /*! Ends a registration by the uuid of its handle without waiting for a running handler. */
    virtual bool unregisterUpdateHandler(const QString &uuid) = 0;
    /*! Ends a registration by the uuid of its handle without waiting for a running handler. */
    virtual bool unregisterDeleteHandler(const QString &uuid) = 0;
    virtual ~NotificationInterface() = default;
};

} // namespace Tessellum::Notification::Interfaces
