#include <shared/communication/connections/Connection.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

#include <QPointer>
#include <QScopeGuard>
#include <QThread>
#include <QUuid>

#include <utility>

namespace Shared::Communication::Connections {

using Synchronization::ScopedLock;

Connection::Connection(const QString &id)
    : connectionId(id.isEmpty() ? QUuid::createUuid().toString() : id)
{ }

Connection::~Connection() = default;

bool Connection::open()
{
    if (isConnected())
        return false;
    {
        // At once, not when the call's turn comes: a close() that is called after this one gives its reason.
        const ScopedLock lock(this);
        lastReason.clear();
    }
    if (!isOnOwnThread()) {
        queue([this] { openOnOwnThread(); });
        return true;
    }
    return openOnOwnThread();
}

bool Connection::openOnOwnThread()
{
    if (isConnected())
        return false;
    bool isOpen = false;
    bool connected = false;
    const QPointer<Connection> self(this);
    underLock([&] { isOpen = beginToConnect(connected); });
    // Whoever was told meanwhile may have dropped this connection.
    if (!self)
        return false;
    if (!isOpen)
        return fail();
    if (connected)
        onConnect();
    return true;
}

bool Connection::beginToConnect(bool &connected)
{
    if (!internalOpenReqest() || !internalConnect(connected))
        return false;
    const auto device = getRawDevice().lock();
    if (!device)
        return false;
    // A device that was opened before has the connection already, and needs it once.
    QObject::disconnect(device.get(), &QIODevice::readyRead, this, &Connection::onDataReceived);
    return QObject::connect(device.get(), &QIODevice::readyRead, this, &Connection::onDataReceived);
}

bool Connection::fail() const
{
    Q_EMIT connectionFailed();
    return false;
}

bool Connection::close(const QVariant &reason)
{
    if (!isValid())
        return false;
    {
        const ScopedLock lock(this);
        lastReason = reason;
    }
    return onClose();
}

QVariant Connection::closeReason() const
{
    const ScopedLock lock(this);
    return lastReason;
}

QString Connection::getId() const
{
    return connectionId;
}

bool Connection::isValid() const
{
    const ScopedLock lock(this);
    return !getRawDevice().expired();
}

bool Connection::onClose()
{
    if (!isOnOwnThread()) {
        queue([this] { onClose(); });
        return isValid();
    }
    return withDevice([](QIODevice &device) { device.close(); });
}

bool Connection::onDataSend(const QByteArray &request)
{
    if (!isConnected())
        return false;
    if (!isOnOwnThread()) {
        queue([this, request] { onDataSend(request); });
        return true;
    }
    qint64 written = -1;
    withDevice([&](QIODevice &device) { written = device.write(request); });
    return written == request.size();
}

void Connection::onDataReceived()
{
    if (!isOnOwnThread()) {
        queue([this] { onDataReceived(); });
        return;
    }
    const QPointer<Connection> self(this);
    // A device does not announce what comes while the last block is being told, if that runs an event loop.
    while (self && isConnected()) {
        QByteArray data;
        withDevice([&data](QIODevice &device) { data = device.readAll(); });
        if (!self || data.isEmpty())
            return;
        Q_EMIT dataReceived(data);
    }
}

void Connection::onConnect() const
{
    Q_EMIT connectionEstablished();
}

void Connection::onDisconnect() const
{
    Q_EMIT connectionClosed();
}

void Connection::onSocketError(QAbstractSocket::SocketError error)
{
    if (!isOnOwnThread()) {
        queue([this, error] { onSocketError(error); });
        return;
    }
    QString text = QStringLiteral("<invalid socket instance>");
    withDevice([&text](const QIODevice &device) { text = device.errorString(); });
    Logging::FrameworkLog().log() << "Connection::onSocketError() received socket error=" << text;
    if (!isConnected())
        Q_EMIT connectionFailed();
}

bool Connection::isOnOwnThread() const
{
    return QThread::currentThread() == thread();
}

void Connection::queue(std::function<void()> call)
{
    QMetaObject::invokeMethod(this, std::move(call), Qt::QueuedConnection);
}

bool Connection::withDevice(const std::function<void(QIODevice &)> &use)
{
    bool isThere = false;
    underLock([&] {
        const auto device = getRawDevice().lock();
        isThere = device != nullptr;
        if (isThere)
            use(*device);
    });
    return isThere;
}

void Connection::tell(const std::function<void()> &signal)
{
    if (deviceUses > 0)
        untold.append(signal);
    else
        signal();
}

/*! Runs \a use under the lock, then what the device told meanwhile without it. */
void Connection::underLock(const std::function<void()> &use)
{
    {
        const ScopedLock lock(this);
        ++deviceUses;
        const auto end = qScopeGuard([this] { --deviceUses; });
        use();
    }
    const QPointer<Connection> self(this);
    while (self && deviceUses == 0 && !untold.isEmpty())
        untold.takeFirst()();
}

} // namespace Shared::Communication::Connections
