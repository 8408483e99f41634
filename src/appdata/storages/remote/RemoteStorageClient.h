#pragma once

#include <appconfig/utils/ShownAttribute.h>
#include <appdata/storages/remote/RemoteStorageConnection.h>
#include <appdata/storages/remote/RemoteStorageMirror.h>
#include <appdata/storages/remote/RemoteStorageNode.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <notification/interfaces/NotificationHandleInterface.h>
#include <notification/interfaces/NotificationInterface.h>

#include <QPointer>
#include <QWebSocket>

#include <atomic>
#include <memory>
#include <vector>

namespace Tessellum::AppData::Storages::utils {

/*!
 * Keeps one storage of this process equal to one of a server: takes the server's contents, then its changes.
 * What is changed here stays here.
 *
 * "connect" and "close" in the attribute "appdata.storages.remote_clients.ID.control" open and close the
 * connection, "status" beside it tells "established" or "disconnected". A lost connection stays lost until
 * somebody writes "connect". An id that is no single element of a path gets neither attribute.
 *
 * Threads: any may call the operations of the node; socket and slots belong to the event thread, which never
 * waits here; the mirror belongs to the worker. Lock: the mutex guards the frames between the two.
 * Made by MakeEventThreadObject().
 */
class RemoteStorageClient : public RemoteStorageNode,
                            public AppData::utils::AppDataRepositoryEventThreadUser,
                            public std::enable_shared_from_this<RemoteStorageClient>
{
    Q_OBJECT

public:
    /*! The items of the query: "id" names this client, "path" the storage of the server, "limit" (bytes, 256
     * MiB without it) bounds a received message, what waits to be worked off, and the copy itself. */
    RemoteStorageClient(const QUrl &url, const QString &nameOfStorage);
    ~RemoteStorageClient() override;

    /*! Starts the first connection; true. */
    bool initialize() override;
    /*! Whether the status attribute is there. */
    bool isRunning() const override;
    bool createEntry(const QString &storageName, const QString &path, const EntryRecord &info) override;
    bool createElement(const QString &path, const QString &name, const ElementValues &values) override;
    bool updateElement(const QString &path, const QString &name, const ElementValues &values) override;
    bool removeEntry(const QString &path) override;

Q_SIGNALS:
    void requestInitialization();
    void requestedClose();
    void messageRequest(const QString &message);
    void messageRequestBinary(const QByteArray &message);

public Q_SLOTS:
    void onInitializationRequested();
    void onConnected();
    void onDisconnected();
    void onTextMessageReceived(const QString &message);
    void onBinaryMessageReceived(const QByteArray &message);
    void onMessageRequestReceived(const QString &message);
    void onBinaryMessageRequestReceived(const QByteArray &message);

private:
    using Frame = RemoteStorageFrame;

    void observeControl();
    void makeSocket();
    void queueFrame(const Frame &frame);
    void takeFrames();
    void takeFrame(const Frame &frame);

    const QString storageName;
    const qint64 limit;
    std::atomic<bool> supportsBinaryData = true;
    const std::unique_ptr<AppConfig::utils::ShownAttribute> attributes; // null with an id that has none
    Notification::Interfaces::NotificationInterface::HandlePointer controlHandle;
    RemoteStorageMirror mirror;
    QPointer<QWebSocket> socket; // a child

    QMutex frameMutex;
    std::vector<Frame> frames; // that no step has taken yet
    qint64 frameBytes = 0; // in them
    std::weak_ptr<void> waitingStep; // that will take them; gone where the repository's stop has dropped it
};

} // namespace Tessellum::AppData::Storages::utils
