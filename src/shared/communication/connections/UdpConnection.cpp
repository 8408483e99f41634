#include <shared/communication/connections/MakeConnection.h>
#include <shared/communication/connections/UdpConnection.h>

#include <QNetworkDatagram>
#include <QPointer>
#include <QUdpSocket>

namespace Shared::Communication::Connections {

UdpConnection::UdpConnection(const QString &host, unsigned short port, unsigned int timeout,
                             QAbstractSocket::NetworkLayerProtocol protocol)
    : SocketConnection(host, port, timeout, protocol)
{ }

UdpConnection::~UdpConnection() = default;

std::shared_ptr<QAbstractSocket> UdpConnection::makeSocket() const
{
    return std::shared_ptr<QUdpSocket>(new QUdpSocket, ConnectionReleaser());
}

void UdpConnection::onDataReceived()
{
    // A read of the stream would join datagrams and cut long ones. A peer that never stops does not keep the
    // thread: the socket tells again of what is left.
    constexpr int mostAtOnce = 256;
    constexpr int largest = 65536; // bytes, more than a datagram has
    if (!isOnOwnThread()) {
        Connection::onDataReceived();
        return;
    }
    const QPointer<Connection> self(this);
    for (int i = 0; self && i < mostAtOnce && isConnected(); ++i) {
        bool isPending = true;
        QByteArray data;
        withDevice([&](QIODevice &device) {
            auto &socket = static_cast<QUdpSocket &>(device);
            // What was told first may be that the peer is not there. Asking for what is pending would lose
            // that, and the socket tells nothing more until it has been read.
            isPending = i == 0 || socket.hasPendingDatagrams();
            if (isPending)
                data = socket.receiveDatagram(largest).data();
        });
        if (!self || !isPending)
            return;
        data.squeeze();
        if (!data.isEmpty())
            Q_EMIT dataReceived(data);
    }
}

} // namespace Shared::Communication::Connections
