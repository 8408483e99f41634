#pragma once

#include <shared/TessellumExport.h>

#include <QMultiHash>
#include <QPointer>
#include <QTcpServer>
#include <QWebSocketServer>

class QTcpSocket;
class QWebSocket;

namespace Tessellum::Notification::utils {

/*!
 * Accepts web sockets, and survives whoever else comes: a peer that does not finish its handshake ends after
 * some seconds and costs no more memory than a message. It has at most 10,000 sockets, and leaves the process
 * the last 64 descriptors, without which no thread can start: whoever comes beyond is closed at once. Belongs
 * to the thread that it was made on, which needs an event loop.
 */
class TESSELLUM_EXPORT WebSocketListener : public QObject
{
    Q_OBJECT

public:
    /*! \a limit: the most bytes of a message or frame that a socket takes. */
    WebSocketListener(qint64 limit, QObject *parent);

    /*! Port 0 takes a free one. False, with the reason in getError(). */
    bool listen(const QHostAddress &address, quint16 port);
    /*! 0 while it does not listen. */
    quint16 getPort() const;
    QString getError() const;

Q_SIGNALS:
    /*! \a socket belongs to the listener and dies with it, unless the receiver frees it before. */
    void connected(QWebSocket *socket);

private:
    void takeSockets();
    void beginHandshake(QTcpSocket *socket);
    void awaitHandshake(quint16 port, QPointer<QTcpSocket> socket, int ticks);
    void refuse(QTcpSocket *socket);
    void pause(const QString &reason);
    void endHandshakes();
    void finish(QWebSocket &finished);

    const qint64 limit;
    QTcpServer listener;
    QWebSocketServer handshakes;
    QMultiHash<quint16, QTcpSocket *> unfinished; // by the peer's port
    int alive = 0; // sockets
    bool toldOfPause = false;
    QObject context; // of what the sockets tell, which ends first: they outlive the table
};

} // namespace Tessellum::Notification::utils
