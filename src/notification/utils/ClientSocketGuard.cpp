#include <notification/utils/ClientSocketGuard.h>
#include <shared/logging/FrameworkLog.h>

#include <QEvent>
#include <QHostAddress>
#include <QWebSocket>

#include <algorithm>
#include <memory>

namespace Tessellum::Notification::utils {

namespace {

constexpr int ChecksInPatience = 5;

} // namespace

void ClientSocketGuard::Guard(QWebSocket *guarded, qint64 mostAnswers, End end)
{
    static_cast<void>(std::make_unique<ClientSocketGuard>(guarded, mostAnswers, end).release());
}

ClientSocketGuard::ClientSocketGuard(QWebSocket *guarded, qint64 mostAnswers, End end, int mostPatience)
    : QObject(guarded)
    , socket(guarded)
    , limit(mostAnswers)
    , patience(mostPatience)
{
    socket->installEventFilter(this);
    connect(socket, &QWebSocket::bytesWritten, this, &ClientSocketGuard::noteWritten);
    timer.setInterval(patience / ChecksInPatience);
    connect(&timer, &QTimer::timeout, this, &ClientSocketGuard::check);
    connect(socket, &QWebSocket::aboutToClose, this, [this] {
        isClosing = true;
        progress.start();
        timer.start();
    });
    connect(socket, &QWebSocket::disconnected, this, &QObject::deleteLater);
    if (end == End::Server)
        timer.start();
}

/*! Qt reads from the peer in a call that is queued to the web socket, and answers pings in it. */
bool ClientSocketGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::MetaCall)
        return false;
    const qint64 before = socket->bytesToWrite();
    watched->event(event);
    noteAnswers(socket->bytesToWrite() - before);
    return true;
}

void ClientSocketGuard::noteAnswers(qint64 bytes)
{
    unsentAnswers += std::max<qint64>(0, bytes);
    if (isClosing || unsentAnswers <= limit)
        return;
    flush();
    if (unsentAnswers > limit)
        close("unsent answers to pings");
}

/*! Whether some bytes go: what waits for the event loop is not the peer's fault. */
bool ClientSocketGuard::flush()
{
    const qint64 before = socket->bytesToWrite();
    socket->flush(); // tells of what it has written
    return socket->bytesToWrite() < before;
}

void ClientSocketGuard::noteWritten()
{
    unsentAnswers = std::min(unsentAnswers, socket->bytesToWrite());
    if (!isClosing && progress.isValid())
        progress.start();
}

void ClientSocketGuard::check()
{
    if (!isClosing && socket->bytesToWrite() == 0)
        progress.invalidate();
    else if (!progress.isValid())
        progress.start();
    else if (progress.hasExpired(patience) && isClosing)
        socket->abort();
    else if (progress.hasExpired(patience) && !flush())
        close("unsent bytes do not go");
}

void ClientSocketGuard::close(const char *reason)
{
    Shared::Logging::FrameworkLog().warning()
        << "ClientSocketGuard::close() peer=" << socket->peerAddress().toString() << ":" << socket->peerPort()
        << " reason=" << reason;
    socket->close(QWebSocketProtocol::CloseCodeTooMuchData);
}

} // namespace Tessellum::Notification::utils
