#pragma once

#include <shared/communication/connections/SocketConnection.h>

namespace Shared::Communication::Connections {

/*! A connection over UDP: each datagram of the peer is one dataReceived(), each onDataSend() one datagram. It
 * is connected once the peer's name is known. Made by MakeConnection<UdpConnection>(...). */
class TESSELLUM_EXPORT UdpConnection : public SocketConnection
{
    Q_OBJECT

public:
    /*! \a timeout is without meaning: nothing is waited for. */
    UdpConnection(const QString &host, unsigned short port, unsigned int timeout,
                  QAbstractSocket::NetworkLayerProtocol protocol);
    ~UdpConnection() override;

public Q_SLOTS:
    void onDataReceived() override;

protected:
    std::shared_ptr<QAbstractSocket> makeSocket() const override;

private:
    void tellDatagram(const QByteArray &data, bool isLast);
};

} // namespace Shared::Communication::Connections
