#include <notification/utils/ClientSocketGuard.h>
#include <notification/utils/WebSocketListener.h>
#include <shared/foundation/platform/Descriptors.h>
#include <shared/logging/FrameworkLog.h>

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>
#include <QWebSocket>

#include <memory>
#include <utility>

namespace Tessellum::Notification::utils {

using Shared::Foundation::Platform::HasFreeDescriptors;
using Shared::Logging::FrameworkLog;

namespace {

constexpr qint64 headerBytes
    = 16LL * 1024; // what a handshake or the head of a frame may take beyond the limit
constexpr int handshakeTick = 1000; // milliseconds
constexpr int handshakeTicks = 5;
constexpr int acceptPause = 1000; // milliseconds
constexpr int mostSockets = 10000;
constexpr int keptDescriptors = 64; // GLib ends the process if a new thread's event loop gets none
// Beyond what a process can have; with the largest int Qt accepts nobody.
constexpr int mostPending = 1000000;

} // namespace

// The sockets are taken here, not by Qt's server: it lets a peer that does not finish its handshake fill the
// memory, and keeps what is left of it.
WebSocketListener::WebSocketListener(qint64 messageLimit, QObject *parent)
    : QObject(parent)
    , limit(messageLimit)
    , listener(this)
    , handshakes(QStringLiteral("vlk"), QWebSocketServer::NonSecureMode, this)
{
    listener.setMaxPendingConnections(mostPending);
    handshakes.setMaxPendingConnections(mostPending);
    connect(&listener, &QTcpServer::newConnection, this, &WebSocketListener::takeSockets);
    connect(&listener, &QTcpServer::acceptError, this, [this] { pause(getError()); });
    connect(&handshakes, &QWebSocketServer::newConnection, this, &WebSocketListener::endHandshakes);
}

bool WebSocketListener::listen(const QHostAddress &address, quint16 port)
{
    return listener.listen(address, port);
}

quint16 WebSocketListener::getPort() const
{
    return listener.serverPort();
}

QString WebSocketListener::getError() const
{
    return listener.errorString();
}

void WebSocketListener::takeSockets()
{
    while (QTcpSocket *const socket = listener.nextPendingConnection()) {
        if (alive < mostSockets && HasFreeDescriptors(keptDescriptors))
            beginHandshake(socket);
        else
            refuse(socket);
    }
}

void WebSocketListener::refuse(QTcpSocket *socket)
{
    delete socket;
    pause(QStringLiteral("%1 sockets are open, or fewer than %2 descriptors are free")
              .arg(alive)
              .arg(keptDescriptors));
}

/*! Qt stops for good when it finds no descriptor, and otherwise would spin on those that wait. */
void WebSocketListener::pause(const QString &reason)
{
    if (!std::exchange(toldOfPause, true))
        FrameworkLog().warning() << "WebSocketListener::pause() cannot accept: " << reason;
    listener.pauseAccepting();
    QTimer::singleShot(acceptPause, &listener, [this] { listener.resumeAccepting(); });
}

void WebSocketListener::beginHandshake(QTcpSocket *socket)
{
    const quint16 port = socket->peerPort();
    toldOfPause = false;
    ++alive;
    // Qt cuts all connections of a web socket's socket, but not those of its child.
    const auto child = std::make_unique<QObject>(socket).release();
    connect(child, &QObject::destroyed, &context, [this] { --alive; });
    socket->setReadBufferSize(limit + headerBytes);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // an answer waits for nothing
    unfinished.insert(port, socket);
    connect(socket, &QTcpSocket::disconnected, &context, [this, port, socket] {
        if (unfinished.remove(port, socket) > 0)
            socket->deleteLater();
    });
    awaitHandshake(port, socket, handshakeTicks);
    handshakes.handleConnection(socket);
}

/*! Tick by tick: a peer whose bytes this thread was too busy to read for seconds gets the turns that it
 * takes. */
void WebSocketListener::awaitHandshake(quint16 port, QPointer<QTcpSocket> socket, int ticks)
{
    QTimer::singleShot(handshakeTick, &context, [this, port, socket = std::move(socket), ticks]() mutable {
        if (!socket || !unfinished.contains(port, socket))
            return;
        if (ticks > 1)
            awaitHandshake(port, std::move(socket), ticks - 1);
        else
            socket->abort();
    });
}

void WebSocketListener::endHandshakes()
{
    while (QWebSocket *const socket = handshakes.nextPendingConnection()) {
        socket->setParent(this); // Qt gives it none
        finish(*socket);
        socket->setMaxAllowedIncomingMessageSize(quint64(limit));
        socket->setMaxAllowedIncomingFrameSize(quint64(limit));
        socket->setOutgoingFrameSize(QWebSocket::maxOutgoingFrameSize()); // a message is one frame
        ClientSocketGuard::Guard(socket, limit, ClientSocketGuard::End::Server);
        Q_EMIT connected(socket);
    }
}

/*! Its handshake is done; the socket below goes with it. */
void WebSocketListener::finish(QWebSocket &finished)
{
    const auto sockets = unfinished.values(finished.peerPort());
    for (QTcpSocket *const socket : sockets) {
        if (socket->peerAddress() == finished.peerAddress()) {
            unfinished.remove(finished.peerPort(), socket);
            static_cast<void>(disconnect(socket, &QTcpSocket::disconnected, &context, nullptr));
            socket->setParent(&finished);
        }
    }
}

} // namespace Tessellum::Notification::utils
