#include <shared/communication/connections/SocketConnection.h>
#include <shared/synchronization/ScopedLock.h>

namespace Shared::Communication::Connections {

SocketConnection::SocketConnection(const QString &host, unsigned short port, unsigned int timeout,
                                   QAbstractSocket::NetworkLayerProtocol protocol)
    : peerHost(host)
    , peerPort(port)
    , connectTimeout(timeout)
    , networkProtocol(protocol)
{ }

SocketConnection::~SocketConnection()
{
    // The socket may outlive this by a turn of the event loop.
    if (peerSocket)
        peerSocket->disconnect(this);
}

bool SocketConnection::isConnected() const
{
    return isValid() && hasConnected.load();
}

std::weak_ptr<QIODevice> SocketConnection::getRawDevice() const
{
    const Synchronization::ScopedLock lock(this);
    return peerSocket;
}

bool SocketConnection::onClose()
{
    if (!isOnOwnThread())
        return Connection::onClose();
    return withDevice([this](QIODevice &device) {
        // The socket would wait for the peer first, for as long as it takes.
        if (isConnecting())
            peerSocket->abort();
        else
            device.close();
    });
}

bool SocketConnection::internalOpenReqest()
{
    if (peerSocket)
        return true;
    peerSocket = makeSocket();
    if (!peerSocket)
        return false;
    const auto *const device = peerSocket.get();
    connect(device, &QAbstractSocket::stateChanged, this, [this](QAbstractSocket::SocketState state) {
        hasConnected.store(state == QAbstractSocket::ConnectedState);
    });
    connect(device, &QAbstractSocket::connected, this, [this] { tell([this] { onConnect(); }); });
    connect(device, &QAbstractSocket::disconnected, this, [this] { tell([this] { onDisconnect(); }); });
    connect(device, &QAbstractSocket::errorOccurred, this,
            [this](QAbstractSocket::SocketError error) { tell([this, error] { onSocketError(error); }); });
    return true;
}

bool SocketConnection::internalConnect(bool &connected)
{
    connected = false;
    if (!peerSocket)
        return false;
    // A close that still waits for a peer to take the last data would keep the socket from its next connect.
    if (peerSocket->state() == QAbstractSocket::ClosingState)
        peerSocket->abort();
    peerSocket->connectToHost(peerHost, peerPort, QIODevice::ReadWrite, networkProtocol);
    return true;
}

bool SocketConnection::isConnecting() const
{
    return peerSocket
        && (peerSocket->state() == QAbstractSocket::HostLookupState
            || peerSocket->state() == QAbstractSocket::ConnectingState);
}

} // namespace Shared::Communication::Connections
