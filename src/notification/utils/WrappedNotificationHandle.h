#pragma once

#include <notification/utils/NotificationHandle.h>

#include <QReadWriteLock>

#include <memory>

namespace Tessellum::Notification::utils {

/*! Gives access to the handle that a front stands for. */
class NotificationHandleProvider
{
public:
    virtual ~NotificationHandleProvider() = default;
    /*! The handle, or null once it was let go. */
    virtual std::shared_ptr<NotificationHandleBase> getHandle() const = 0;
};

/*!
 * The front of a handle that the application holds, one for each registration. Its end is the handle's end.
 *
 * Lock: guards the owning pointer and is held to copy or take it alone, never while the handle is called.
 */
class TESSELLUM_EXPORT WrappedNotificationHandle : public Interfaces::NotificationHandleInterface,
                                                   public NotificationHandleProvider
{
public:
    explicit WrappedNotificationHandle(std::shared_ptr<NotificationHandleBase> owned);
    /*! Invalidates, and so waits for a running handler. */
    ~WrappedNotificationHandle() override;

    void invalidate() override;
    bool isValid() const override;
    int getHandleType() const override;
    bool isEnabled() const override;
    QString getUuid() const override;
    QString getPath() const override;
    bool setEnabled(const bool &enabled) override;

    std::shared_ptr<NotificationHandleBase> getHandle() const override;

private:
    std::shared_ptr<NotificationHandleBase> handle;
    const std::weak_ptr<NotificationHandleBase> weakHandle;
    mutable QReadWriteLock lock;
};

} // namespace Tessellum::Notification::utils
