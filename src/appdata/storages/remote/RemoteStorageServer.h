#pragma once

#include <appdata/storages/remote/RemoteStorageConnections.h>
#include <appdata/storages/remote/RemoteStorageMirror.h>
#include <appdata/storages/remote/RemoteStorageNode.h>
#include <appdata/storages/remote/RemoteStorageSource.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <notification/utils/FrameQueue.h>
#include <notification/utils/WebSocketListener.h>

#include <atomic>
#include <memory>

namespace Tessellum::AppData::Storages::utils {

/*!
 * Serves the storages of this process to peers, and pushes the changes of its own storage to all of them.
 *
 * The port stands in the attribute "appdata.storages.remote_server_ports.NAME", 0 while it does not listen; a
 * peer with its address in "appdata.storages.remote_server.ID". A peer that misses a push is not told.
 *
 * Threads: any may call the operations of the node; the sockets and the slots belong to the event thread,
 * which never waits here; what a frame asks for is done by the worker. It has no lock of its own. Made by
 * MakeEventThreadObject().
 */
class RemoteStorageServer : public RemoteStorageNode,
                            public AppData::utils::AppDataRepositoryEventThreadUser,
                            public std::enable_shared_from_this<RemoteStorageServer>
{
    Q_OBJECT

public:
    /*! The items of the query: "bind" is the address to listen on, all addresses without it; "limit" (bytes,
     * 64 MiB without it) bounds a received message, what waits of one peer, and what all peers may have kept
     * here. Port 0 takes a free one. */
    RemoteStorageServer(const QString &storageName, const QUrl &url);
    ~RemoteStorageServer() override;

    bool initialize() override;
    bool isRunning() const override;
    bool createEntry(const QString &storageName, const QString &path, const EntryRecord &info) override;
    bool createElement(const QString &path, const QString &name, const ElementValues &values) override;
    bool updateElement(const QString &path, const QString &name, const ElementValues &values) override;
    bool removeEntry(const QString &path) override;

Q_SIGNALS:
    void requestInitialization();
    void notificationMessageReady(const QString &connectionUuid, const QString &message);
    void notificationBinaryMessageReady(const QString &connectionUuid, const QByteArray &message);
    void socketCloseRequested(const QString &connectionUuid);

public Q_SLOTS:
    void onInitializationRequested();
    void onNewConnection(QWebSocket *socket);
    void onNotificationMessageReady(const QString &connectionUuid, const QString &message);
    void onNotificationBinaryMessageReady(const QString &connectionUuid, const QByteArray &message);
    void onTextMessageReceived(const QString &connectionUuid, const QString &message);
    void onBinaryMessageReceived(const QString &connectionUuid, const QByteArray &message);
    void onSocketDisconnected(const QString &connectionUuid);
    void onBytesWritten(const QString &connectionUuid, qint64 bytes);
    /*! The listener has ended: all connections end. */
    void onServerClosed();

private:
    void listen();
    template <class Send>
    void deliver(const QString &connectionUuid, const Send &send);
    void receive(const QString &connectionUuid, const RemoteStorageFrame &frame);
    void takeFrame(const QString &connectionUuid, const RemoteStorageFrame &frame);
    void answer(const QString &connectionUuid, const RemoteStorageMessage &request);
    void showPeer(const QString &connectionUuid, const QString &clientId, const QString &address);
    void push(RemoteStorageCommand command, const QString &path, const RemoteStorageSource::Payload &payload);
    void emitFrame(const QString &connectionUuid, const RemoteStorageFrame &frame);

    using Frames = Notification::utils::FrameQueue<QString>;

    const int port;
    const qint64 limit;
    Notification::utils::WebSocketListener *server = nullptr; // a child
    std::atomic<bool> listening{false};
    std::unique_ptr<AppConfig::utils::ShownAttribute> shownPort;
    std::shared_ptr<Frames> frames; // of the peers, for this run of the repository
    RemoteStorageMirror mirror; // for the worker alone
    RemoteStorageConnections connections;
};

} // namespace Tessellum::AppData::Storages::utils
