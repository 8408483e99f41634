#include <shared/communication/connections/MakeConnection.h>
#include <shared/communication/connections/TcpConnection.h>

#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <limits>

namespace Shared::Communication::Connections {

namespace {

/*! As many milliseconds as a timer can count: more than three weeks. */
int toMilliseconds(unsigned int seconds)
{
    constexpr quint64 factor = 1000;
    return static_cast<int>(std::min<quint64>(seconds * factor, std::numeric_limits<int>::max()));
}

} // namespace

TcpConnection::TcpConnection(const QString &host, unsigned short port, unsigned int timeout,
                             QAbstractSocket::NetworkLayerProtocol protocol)
    : SocketConnection(host, port, timeout, protocol)
{ }

TcpConnection::~TcpConnection() = default;

std::shared_ptr<QAbstractSocket> TcpConnection::makeSocket() const
{
    return std::shared_ptr<QTcpSocket>(new QTcpSocket, ConnectionReleaser());
}

bool TcpConnection::internalConnect(bool &connected)
{
    if (!SocketConnection::internalConnect(connected))
        return false;
    if (getTimeout() == 0)
        return true;
    if (!timer)
        makeTimer();
    // A peer on the same machine may have answered already.
    if (isConnecting())
        timer->start(toMilliseconds(getTimeout()));
    return true;
}

void TcpConnection::makeTimer()
{
    timer = std::shared_ptr<QTimer>(new QTimer(this), ConnectionReleaser());
    timer->setSingleShot(true);
    const auto *const socket = getSocket().get();
    connect(socket, &QAbstractSocket::connected, timer.get(), &QTimer::stop);
    // What has failed or was closed is not told a second time.
    connect(socket, &QAbstractSocket::stateChanged, timer.get(),
            [stopped = timer.get()](QAbstractSocket::SocketState state) {
                if (state == QAbstractSocket::UnconnectedState)
                    stopped->stop();
            });
    connect(timer.get(), &QTimer::timeout, this, [this] {
        withDevice([this](QIODevice &) { getSocket()->abort(); });
        onSocketError(QAbstractSocket::SocketTimeoutError);
    });
}

} // namespace Shared::Communication::Connections
