#include <appdata/storages/remote/RemoteStorageConnections.h>

#include <QMutexLocker>

#include <algorithm>
#include <utility>

namespace Tessellum::AppData::Storages::utils {

namespace {

constexpr qint64 mostHeldBytes = 0x200000;

} // namespace

template <class Body>
bool RemoteStorageConnections::change(const QString &uuid, Body body)
{
    const QMutexLocker locker(&mutex);
    const auto connection = connections.find(uuid);
    if (connection == connections.end())
        return false;
    body(*connection);
    return true;
}

void RemoteStorageConnections::add(const QString &uuid, QWebSocket *socket, const QString &address)
{
    RemoteStorageConnection connection;
    connection.socket = socket;
    connection.address = address;
    const QMutexLocker locker(&mutex);
    connections.insert(uuid, connection);
}

RemoteStorageConnection RemoteStorageConnections::take(const QString &uuid)
{
    const QMutexLocker locker(&mutex);
    return connections.take(uuid);
}

QStringList RemoteStorageConnections::keys() const
{
    const QMutexLocker locker(&mutex);
    return connections.keys();
}

RemoteStorageConnections::Delivery RemoteStorageConnections::beginDelivery(const QString &uuid)
{
    Delivery delivery;
    change(uuid, [&delivery](RemoteStorageConnection &connection) {
        QElapsedTimer &timer = connection.elapsedTimer;
        delivery = {connection.socket,
                    JudgeDelivery(timer.isValid() ? timer.elapsed() : -1, connection.bytesInFlight)};
        if (!timer.isValid())
            timer.start();
        connection.isSending = delivery.decision == RemoteStorageDelivery::Send;
    });
    return delivery;
}

void RemoteStorageConnections::endDelivery(const QString &uuid, qint64 sent)
{
    change(uuid, [sent](RemoteStorageConnection &connection) {
        // A part of it may have been reported as written already.
        connection.isSending = false;
        connection.bytesInFlight = std::max<qint64>(0, connection.bytesInFlight + sent);
    });
}

void RemoteStorageConnections::noteWritten(const QString &uuid, qint64 bytes)
{
    change(uuid, [bytes](RemoteStorageConnection &connection) {
        connection.bytesInFlight -= bytes;
        if (!connection.isSending)
            connection.bytesInFlight = std::max<qint64>(0, connection.bytesInFlight);
        connection.elapsedTimer.invalidate();
    });
}

bool RemoteStorageConnections::noteDrop(const QString &uuid)
{
    bool isFirst = false;
    change(uuid, [&isFirst](RemoteStorageConnection &connection) {
        isFirst = !std::exchange(connection.toldOfDrops, true);
    });
    return isFirst;
}

std::optional<RemoteStorageConnections::Peer> RemoteStorageConnections::beginAnswer(const QString &uuid)
{
    std::optional<Peer> peer;
    change(uuid, [&peer](RemoteStorageConnection &connection) {
        ++connection.answers;
        peer = Peer{connection.address, connection.supportsBinaryData};
    });
    return peer;
}

void RemoteStorageConnections::noteAnswer(const QString &uuid, const std::weak_ptr<Storage> &storage,
                                          bool isBinary)
{
    change(uuid, [&storage, isBinary](RemoteStorageConnection &connection) {
        connection.storage = storage;
        connection.supportsBinaryData = isBinary;
    });
}

QList<RemoteStorageFrame> RemoteStorageConnections::takeHeld(const QString &uuid)
{
    QList<RemoteStorageFrame> frames;
    change(uuid, [&frames](RemoteStorageConnection &connection) {
        frames.swap(connection.held);
        connection.heldBytes = 0;
        if (frames.isEmpty())
            --connection.answers;
    });
    return frames;
}

bool RemoteStorageConnections::hold(const QString &uuid, const RemoteStorageFrame &frame)
{
    bool isHeld = false;
    change(uuid, [&isHeld, &frame](RemoteStorageConnection &connection) {
        isHeld = connection.answers > 0;
        if (isHeld && connection.heldBytes <= mostHeldBytes) {
            connection.held.append(frame);
            connection.heldBytes += SizeOf(frame) + FrameOverhead;
        }
    });
    return isHeld;
}

QList<QPair<QString, bool>> RemoteStorageConnections::getModes() const
{
    QList<QPair<QString, bool>> modes;
    const QMutexLocker locker(&mutex);
    for (auto connection = connections.cbegin(); connection != connections.cend(); ++connection)
        modes.append({connection.key(), connection->supportsBinaryData});
    return modes;
}

void RemoteStorageConnections::setClient(const QString &uuid, const QString &clientId,
                                         std::shared_ptr<AppConfig::utils::ShownAttribute> status)
{
    // The old status, or the new one of a peer that has left, goes behind the mutex.
    change(uuid, [&clientId, &status](RemoteStorageConnection &connection) {
        connection.clientId = clientId;
        connection.status.swap(status);
    });
}

} // namespace Tessellum::AppData::Storages::utils
