#pragma once

#include <appconfig/backends/utils/RemoteSubtreeSource.h>
#include <appconfig/utils/AppConfigRepositoryEventThreadUser.h>
#include <appconfig/utils/ShownAttribute.h>
#include <notification/utils/FrameQueue.h>
#include <notification/utils/WebSocketListener.h>
#include <shared/synchronization/SharedLockable.h>

#include <QHostAddress>
#include <QUrl>
#include <QWebSocket>

#include <map>

namespace Tessellum::AppConfig::Backends::utils {

/*!
 * Listens for peers that mirror a subtree of this process and moves their frames to a source for each and
 * back.
 *
 * The attribute appconfig.backends.remote_server_ports.NAME shows the port once the server has tried to
 * listen, 0 if it could not; appconfig.backends.remote_server.ID shows the address of the client with that
 * id, if updates may create attributes. Both go with what they show.
 *
 * One frame of each connection is worked on in turn. A connection is closed (1009) by a frame over the limit,
 * by unsent bytes over the limit when a further frame is due, and by more received frames than memory should
 * hold. The listener closes those that do not take what they are sent.
 *
 * Made by Make(); lives and dies on the event thread, where all its members but the worker are used, so its
 * lock guards nothing. A connection is known by a running number alone.
 */
class TESSELLUM_EXPORT RemoteBackendServer
    : public Shared::Synchronization::SharedLockable<RemoteBackendServer>,
      public AppConfig::utils::AppConfigRepositoryEventThreadUser
{
    Q_OBJECT
public:
    /*! Null for a URL without a port, with a "bind" that is no address, or a "limit" that is no number. */
    static std::shared_ptr<RemoteBackendServer> Make(const QString &name, const QUrl &url);

    /*! See Make(). */
    struct Settings
    {
        QHostAddress address = QHostAddress(QHostAddress::Any);
        quint16 port = 0; /*!< 0: one that is free. */
        qint64 limit = 0; /*!< In bytes. */
    };

    RemoteBackendServer(const QString &serverName, const Settings &serverSettings);
    ~RemoteBackendServer() override;
    Q_DISABLE_COPY_MOVE(RemoteBackendServer)

    /*! Has the event thread listen; false while the configuration is stopped. */
    bool start();

Q_SIGNALS:
    void startRequested();
    void sendRequested(quint64 number, const QString &frame);
    void clientNamed(quint64 number, const QString &id);

private:
    using Frames = Notification::utils::FrameQueue<quint64>;
    struct Connection
    {
        QWebSocket *socket = nullptr; // the table's, given back by deletion
        std::shared_ptr<RemoteSubtreeSource> source;
        std::unique_ptr<AppConfig::utils::ShownAttribute> status;
        QString statusPath;
        bool isClosing = false;
    };

    void onStart();
    bool listen();
    void addConnection(QWebSocket *socket);
    std::shared_ptr<RemoteSubtreeSource> makeSource(quint64 number);
    void onTextMessageReceived(quint64 number, const QString &frame);
    void onClientNamed(quint64 number, const QString &id);
    void onSocketClosing(quint64 number);
    void onSocketDisconnected(quint64 number);
    void sendTextMessage(quint64 number, const QString &frame);
    void closeOverfull(Connection &connection, const char *reason);
    void dropOnWorker(std::vector<std::shared_ptr<RemoteSubtreeSource>> &&sources);
    Connection *find(quint64 number);

    const QString name;
    const Settings settings;
    std::shared_ptr<Notification::utils::FrameWorker> worker;
    std::shared_ptr<Frames> frames;
    std::unique_ptr<Notification::utils::WebSocketListener> listener;
    std::map<quint64, Connection> connections;
    quint64 lastNumber = 0;
    std::unique_ptr<AppConfig::utils::ShownAttribute> shownPort;
};

} // namespace Tessellum::AppConfig::Backends::utils
