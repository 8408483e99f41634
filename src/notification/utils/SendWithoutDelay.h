#pragma once

#include <shared/TessellumExport.h>

class QWebSocket;

namespace Tessellum::Notification::utils {

/*!
 * Has a connected \a socket send small messages at once. By default the system holds them back until the peer
 * has acknowledged the one before, which takes the peer up to 40 ms.
 *
 * Qt has no such option for web sockets. This relies on the TCP socket being a child of \a socket, as it is
 * in Qt 5.15 for one that was opened. False, and messages are as late as by default, where there is none.
 */
TESSELLUM_EXPORT bool SendWithoutDelay(QWebSocket &socket);

} // namespace Tessellum::Notification::utils
