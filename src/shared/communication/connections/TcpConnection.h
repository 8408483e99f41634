#pragma once

#include <shared/communication/connections/SocketConnection.h>

#include <memory>

class QTimer;

namespace Shared::Communication::Connections {

/*! A connection over TCP. Made by MakeConnection<TcpConnection>(...). */
class TESSELLUM_EXPORT TcpConnection : public SocketConnection
{
    Q_OBJECT

public:
    /*! \a timeout is how long a connect may take, in seconds; with 0 the system decides. */
    TcpConnection(const QString &host, unsigned short port, unsigned int timeout,
                  QAbstractSocket::NetworkLayerProtocol protocol);
    ~TcpConnection() override;

protected:
    std::shared_ptr<QAbstractSocket> makeSocket() const override;
    bool internalConnect(bool &connected) override;

private:
    void makeTimer();

    std::shared_ptr<QTimer> timer;
};

} // namespace Shared::Communication::Connections
