#pragma once

#include <shared/communication/connections/Connection.h>

#include <atomic>

namespace Shared::Communication::Connections {

/*! What connections over a network have in common: a socket, made at the first open() on the connection's
 * thread and kept from then on, and the peer that it connects to. */
class TESSELLUM_EXPORT SocketConnection : public Connection
{
    Q_OBJECT

public:
    ~SocketConnection() override;

    bool isConnected() const override;
    std::weak_ptr<QIODevice> getRawDevice() const override;

public Q_SLOTS:
    /*! A connect that is under way is given up, and nothing is told of it. */
    bool onClose() override;

protected:
    SocketConnection(const QString &host, unsigned short port, unsigned int timeout,
                     QAbstractSocket::NetworkLayerProtocol protocol);

    /*! A new socket; its deleter is ConnectionReleaser. */
    virtual std::shared_ptr<QAbstractSocket> makeSocket() const = 0;

    bool internalOpenReqest() override;
    bool internalConnect(bool &connected) override;

    /*! Empty before the first open(). Its pointer is guarded by the lock. */
    const std::shared_ptr<QAbstractSocket> &getSocket() const { return peerSocket; }
    /*! Seconds; 0 for none. */
    unsigned int getTimeout() const { return connectTimeout; }
    bool isConnecting() const;

private:
    const QString peerHost;
    const unsigned short peerPort;
    const unsigned int connectTimeout;
    const QAbstractSocket::NetworkLayerProtocol networkProtocol;
    std::shared_ptr<QAbstractSocket> peerSocket;
    std::atomic<bool> hasConnected{false}; // the socket's state as other threads may read it
};

} // namespace Shared::Communication::Connections
