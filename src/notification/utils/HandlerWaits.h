#pragma once

#include <QtGlobal>

namespace Tessellum::Notification::utils {

class NotificationHandleBase;

/*!
 * The waits of threads for running handlers, so that handlers that end each other's handles do not wait in a
 * circle. One table for the process with a mutex of its own, which is taken with no other lock held but for
 * the handle's whose handler asks.
 */
class HandlerWaits
{
public:
    /*! Enters that the calling thread waits for \a handle; not entered if that would close a circle. */
    explicit HandlerWaits(const NotificationHandleBase &handle);
    ~HandlerWaits();
    Q_DISABLE_COPY(HandlerWaits)

    /*! False if the wait would never end. */
    bool isEntered() const { return entered; }

private:
    bool entered = true;
};

} // namespace Tessellum::Notification::utils
