#pragma once

#include <notification/interfaces/NotificationHandleInterface.h>
#include <shared/TessellumExport.h>

#include <QMutex>

#include <atomic>
#include <utility>

namespace Tessellum::Notification::utils {

/*!
 * All of a handle but the type of its function.
 *
 * Lock: the recursive mutex is held while the handler runs, and by nothing else for longer than an instant;
 * it is taken with no other lock held.
 */
class TESSELLUM_EXPORT NotificationHandleBase : public Interfaces::NotificationHandleInterface
{
public:
    explicit NotificationHandleBase(const QString &registeredPath);
    ~NotificationHandleBase() override;

    void invalidate() override;
    bool isValid() const override { return !invalidated.load(std::memory_order_acquire); }
    int getHandleType() const override { return handleType; }
    bool isEnabled() const override { return isValid() && enabled.load(std::memory_order_acquire); }
    QString getUuid() const override { return uuid; }
    QString getPath() const override { return path; }
    bool setEnabled(const bool &wanted) override;

    /*! As invalidate(), without waiting for a running handler. */
    void invalidateWithoutWaiting() { invalidated.store(true, std::memory_order_release); }

protected:
    /*! Holds the mutex and marks the calling thread as the one that runs the handler. */
    class Running
    {
    public:
        explicit Running(NotificationHandleBase &running);
        ~Running();
        Q_DISABLE_COPY(Running)

    private:
        NotificationHandleBase &handle;
        Qt::HANDLE previous;
    };

private:
    friend class HandlerWaits;

    std::atomic<bool> invalidated = false;
    QMutex mutex;
    const QString uuid;
    const int handleType = 1;
    const QString path;
    std::atomic<bool> enabled = true;
    std::atomic<Qt::HANDLE> runner = nullptr; // written by the holder of the mutex
};

/*! A handle with its function; \a Handler is one of the handler types. */
template <class Handler>
class NotificationHandle final : public NotificationHandleBase
{
public:
    NotificationHandle(const QString &registeredPath, Handler function)
        : NotificationHandleBase(registeredPath)
        , handler(std::move(function))
    { }

    /*! Calls the handler under the mutex if the handle is enabled by then. The caller keeps the handle alive.
     */
    template <class... Arguments>
    void call(const Arguments &...arguments)
    {
        const Running running(*this);
        if (isEnabled() && handler)
            handler(arguments...);
    }

private:
    const Handler handler;
};

} // namespace Tessellum::Notification::utils
