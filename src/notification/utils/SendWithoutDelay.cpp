#include <notification/utils/SendWithoutDelay.h>

#include <QTcpSocket>
#include <QWebSocket>

namespace Tessellum::Notification::utils {

bool SendWithoutDelay(QWebSocket &socket)
{
    // The one of an earlier connection may still be there; it takes no options.
    const auto sockets = socket.findChildren<QTcpSocket *>(QString(), Qt::FindDirectChildrenOnly);
    for (QTcpSocket *const tcp : sockets)
        tcp->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    return !sockets.isEmpty();
}

} // namespace Tessellum::Notification::utils
