#pragma once

#include <appconfig/backends/utils/RemoteSubtreeMirror.h>
#include <appconfig/utils/AppConfigRepositoryEventThreadUser.h>
#include <notification/interfaces/NotificationInterface.h>
#include <notification/utils/FrameWorker.h>
#include <shared/synchronization/Shareable.h>

#include <QMetaType>
#include <QObject>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>

class QWebSocket;

namespace Tessellum::AppConfig::Backends::utils {

class RemoteBackendClient;
using RemoteBackendClientPtr = std::shared_ptr<RemoteBackendClient>;

/*!
 * The connection of a backend to the process that holds its subtree. The mirror knows what the frames mean;
 * here they are moved.
 *
 * The attribute control beneath appconfig.backends.remote_clients.ID takes "connect" and "close", status
 * shows "established" or "disconnected". Nothing reconnects by itself.
 *
 * Made by Make(), lives and dies on the event thread, and touches its socket there alone. Received frames and
 * the status go through the worker, so no slot waits. Mirror attributes hold the client strongly, all else
 * weakly. No lock of its own. Any thread may call the public operations.
 */
class TESSELLUM_EXPORT RemoteBackendClient : public QObject,
                                             public Shared::Synchronization::Shareable<RemoteBackendClient>,
                                             public AppConfig::utils::AppConfigRepositoryEventThreadUser
{
    Q_OBJECT
public:
    using Callback = RemoteSubtreeMirror::Callback;

    /*! A client for the backend \a node, not yet connected, with its control attribute in the tree; null
     * while the configuration is stopped, and for a "limit" that is no number of bytes. */
    static RemoteBackendClientPtr Make(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node,
                                       const QUrl &url);
    RemoteBackendClient(const QUrl &serverUrl, qint64 messageLimit);
    ~RemoteBackendClient() override;
    Q_DISABLE_COPY_MOVE(RemoteBackendClient)

    /*! Connects, and gives \a callback the values of the subtree, none if that failed. Called on the worker,
     * which may wait in it. Whether it is taken. */
    bool requestInitialization(const Callback &callback);
    /*! Takes the callback back; false if it is being called or was. */
    bool cancelInitialization();
    /*! See RemoteSubtreeMirror. */
    bool read(const QString &path, QVariant &out);
    bool write(const QString &path, const QVariant &value);

    /*! Whether the URL names a subtree. */
    bool hasPath() const;
    /*! The functions of a mirror attribute of this client. */
    RemoteSubtreeMirror::Details makeDetails(const QString &path, const QVariant &initial);

Q_SIGNALS:
    void sendRequested(const QString &frame);
    void closeRequested();
    void initializationRequested();

private:
    bool initialize(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node);
    void makeControl();
    void onControl(const QString &command);

    void onInitializationRequested();
    void makeSocket();
    void dropSocket();
    void onConnected();
    void onDisconnected();
    void onTextMessageReceived(const QString &frame);
    void sendFrame(const QString &frame);
    void giveUp(const char *reason);

    void publishStatus(const QString &text);
    void endInitialization();
    QString describedUrl() const;

    const QUrl url;
    const QString id;
    const qint64 limit; // of an incoming message, and of the bytes that wait to be sent
    QStringList basePath; // of status and control; empty where the id names no node
    std::shared_ptr<RemoteSubtreeMirror> mirror;
    std::shared_ptr<Notification::utils::FrameWorker> worker;
    const std::shared_ptr<RemoteUpdateQueue> status = std::make_shared<RemoteUpdateQueue>();
    const std::shared_ptr<std::atomic<qint64>> waitingBytes; // received and not yet worked on
    Notification::Interfaces::NotificationInterface::HandlePointer control;
    QWebSocket *socket = nullptr; // a child, made on the event thread
    bool isEstablished = false; // as the status says, on the event thread
    bool isEndTold = false; // of this socket
};

} // namespace Tessellum::AppConfig::Backends::utils

Q_DECLARE_METATYPE(Tessellum::AppConfig::Backends::utils::RemoteBackendClientPtr)
