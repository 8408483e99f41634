#include <shared/communication/connections/MakeConnection.h>
#include <shared/communication/connections/UdpConnection.h>

#include <QNetworkDatagram>
#include <QPointer>
#include <QSignalBlocker>
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
        bool hasCome = false;
        QByteArray data;
        withDevice([&](QIODevice &device) {
            // The socket tells nothing more until it has been read: that is what ends this, too. Asking for
            // what is pending would not do, and it would lose the news that the peer is not there. Only the
            // first read is known to find anything; that a further one does not is no error.
            const QSignalBlocker quiet(i == 0 ? nullptr : &device);
            const QNetworkDatagram datagram = static_cast<QUdpSocket &>(device).receiveDatagram(largest);
            hasCome = datagram.isValid();
            data = datagram.data();
        });
        if (!self || (i > 0 && !hasCome))
            return;
        data.squeeze();
        if (!data.isEmpty())
            tellDatagram(data, i + 1 == mostAtOnce);
    }
}

void UdpConnection::tellDatagram(const QByteArray &data, bool isLast)
{
    if (!isLast) {
        Q_EMIT dataReceived(data);
        return;
    }
    // A slot may run an event loop, and what comes meanwhile is not announced within an announcement. Nothing
    // is read behind this one, so it is told outside.
    queue([this, data] {
        if (isConnected())
            Q_EMIT dataReceived(data);
    });
}

} // namespace Shared::Communication::Connections
