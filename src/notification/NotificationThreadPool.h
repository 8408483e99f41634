#pragma once

#include <notification/utils/HandlerPool.h>

namespace Tessellum::Notification {

/*! The one pool that calls handlers, "NotificationThreadPool": made on first use, running, never destroyed.
 */
TESSELLUM_EXPORT utils::HandlerPool &NotificationThreadPool();

/*!
 * True: lets notifications in. False: discards those that are queued and waits for the handlers that run,
 * with no lock held; a call from inside a handler does not wait.
 */
TESSELLUM_EXPORT void setNotificationPoolRunning(bool running);

} // namespace Tessellum::Notification
