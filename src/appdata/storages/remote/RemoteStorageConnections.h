#pragma once

#include <appdata/storages/remote/RemoteStorageConnection.h>

#include <QHash>
#include <QMutex>
#include <QPair>
#include <QStringList>

#include <optional>

namespace Tessellum::AppData::Storages::utils {

/*!
 * The peers of a server by the uuids of their connections: what each may be sent, what has come of it and
 * what waits for its answer. It touches no socket. What names a connection that has gone does nothing.
 *
 * Threads: any; the sockets that it hands out are for the event thread. The mutex guards the table; nothing
 * is called while it is held.
 */
class RemoteStorageConnections
{
public:
    void add(const QString &uuid, QWebSocket *socket, const QString &address);
    /*! Empty where there is none. */
    RemoteStorageConnection take(const QString &uuid);
    QStringList keys() const;

    struct Delivery
    {
        QPointer<QWebSocket> socket; /*!< Null: there is no such peer. */
        RemoteStorageDelivery decision = RemoteStorageDelivery::Drop;
    };
    /*! What becomes of a message. One that is sent is followed by endDelivery() with the bytes that the
     * socket has taken. */
    Delivery beginDelivery(const QString &uuid);
    void endDelivery(const QString &uuid, qint64 sent);
    void noteWritten(const QString &uuid, qint64 bytes);

    /*! A received frame was dropped; whether it is the first one of this peer. */
    bool noteDrop(const QString &uuid);

    struct Peer
    {
        QString address;
        bool isBinary = false;
    };
    /*! From here until takeHeld() has nothing more, hold() keeps what is pushed. Nothing without a peer. */
    std::optional<Peer> beginAnswer(const QString &uuid);
    void noteAnswer(const QString &uuid, const std::weak_ptr<Storage> &storage, bool isBinary);
    QList<RemoteStorageFrame> takeHeld(const QString &uuid);
    /*! True where the frame must not be sent now: it is kept, or lost as it would be behind the answer. */
    bool hold(const QString &uuid, const RemoteStorageFrame &frame);

    /*! The uuids with whether they take binary frames. */
    QList<QPair<QString, bool>> getModes() const;
    void setClient(const QString &uuid, const QString &clientId,
                   std::shared_ptr<AppConfig::utils::ShownAttribute> status);

private:
    template <class Body>
    bool change(const QString &uuid, Body body);

    mutable QMutex mutex;
    QHash<QString, RemoteStorageConnection> connections;
};

} // namespace Tessellum::AppData::Storages::utils
