#include <appconfig/backends/utils/RemoteBackendServer.h>
#include <appconfig/InternalSettingsProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/utils/MakeNode.h>
#include <notification/utils/UrlLimit.h>
#include <shared/logging/FrameworkLog.h>

#include <QUrlQuery>

#include <utility>

namespace Tessellum::AppConfig::Backends::utils {

using AppConfig::utils::RepositoryProvider;
using AppConfig::utils::ShownAttribute;
using Notification::utils::WebSocketListener;
using Shared::Logging::FrameworkLog;

namespace {

constexpr qint64 DefaultLimit = 64LL * 1024 * 1024;
constexpr qint64 WaitingBytes = 16LL * 1024 * 1024; // of received frames, at least
constexpr int LongestId = 200; // of a client, in a line and in the tree
constexpr qint64 FrameBytes = 128; // what a waiting frame takes beside its text

QString StatusPath(const char *parent, const QString &id)
{
    return RepositoryProvider::getInstance()->getPathFromPathElements(
        {QStringLiteral("appconfig"), QStringLiteral("backends"), QLatin1String(parent), id});
}

bool MayCreateStatus()
{
    return InternalSettingsProvider().settings()->readSetting<bool>(
        QStringLiteral("repository"), QStringLiteral("automatic_create_through_updates"), false);
}

} // namespace

std::shared_ptr<RemoteBackendServer> RemoteBackendServer::Make(const QString &name, const QUrl &url)
{
    Settings settings;
    const QUrlQuery query(url);
    const QString bind = query.queryItemValue(QStringLiteral("bind"), QUrl::FullyDecoded);
    const auto limit = Notification::utils::ReadUrlLimit(url, DefaultLimit);
    if (url.port(-1) < 0 || !limit || (!bind.isEmpty() && !settings.address.setAddress(bind)))
        return nullptr;
    settings.port = static_cast<quint16>(url.port());
    settings.limit = *limit;
    return Notification::utils::MakeEventThreadObject<RemoteBackendServer>(name, settings);
}

RemoteBackendServer::RemoteBackendServer(const QString &serverName, const Settings &serverSettings)
    : AppConfigRepositoryEventThreadUser(this)
    , name(serverName)
    , settings(serverSettings)
{
    connect(this, &RemoteBackendServer::startRequested, this, &RemoteBackendServer::onStart,
            Qt::QueuedConnection);
    connect(this, &RemoteBackendServer::sendRequested, this, &RemoteBackendServer::sendTextMessage,
            Qt::QueuedConnection);
    connect(this, &RemoteBackendServer::clientNamed, this, &RemoteBackendServer::onClientNamed,
            Qt::QueuedConnection);
}

RemoteBackendServer::~RemoteBackendServer()
{
    if (listener)
        listener->disconnect(this);
    std::vector<std::shared_ptr<RemoteSubtreeSource>> sources;
    for (auto &[number, connection] : connections) {
        connection.socket->disconnect(this);
        connection.socket->close(QWebSocketProtocol::CloseCodeNormal);
        delete connection.socket;
        sources.push_back(std::move(connection.source));
    }
    dropOnWorker(std::move(sources));
}

bool RemoteBackendServer::start()
{
    worker = RepositoryProvider::getInstance()->getFrameWorkers().make();
    if (!worker)
        return false;
    frames = std::make_shared<Frames>(worker, 2 * settings.limit + WaitingBytes);
    Q_EMIT startRequested();
    return true;
}

void RemoteBackendServer::onStart()
{
    if (listener)
        return;
    listener = std::make_unique<WebSocketListener>(settings.limit, nullptr);
    connect(listener.get(), &WebSocketListener::connected, this, &RemoteBackendServer::addConnection);
    const quint16 port = listen() ? listener->getPort() : 0;
    shownPort = std::make_unique<ShownAttribute>(StatusPath("remote_server_ports", name), int(port));
}

bool RemoteBackendServer::listen()
{
    if (listener->listen(settings.address, settings.port))
        return true;
    FrameworkLog().warning() << "RemoteBackendServer::onStart() failed to listen id=" << name
                             << " port=" << settings.port << " error=" << listener->getError();
    return false;
}

void RemoteBackendServer::addConnection(QWebSocket *socket)
{
    FrameworkLog().log() << "RemoteBackendServer::onNewConnection() id=" << name;
    const quint64 number = ++lastNumber;
    Connection &connection = connections[number];
    connection.socket = socket;
    connection.source = makeSource(number);
    connect(socket, &QWebSocket::textMessageReceived, this,
            [this, number](const QString &frame) { onTextMessageReceived(number, frame); });
    connect(socket, &QWebSocket::aboutToClose, this, [this, number] { onSocketClosing(number); });
    connect(socket, &QWebSocket::disconnected, this, [this, number] { onSocketDisconnected(number); });
    if (socket->state() == QAbstractSocket::UnconnectedState)
        onSocketDisconnected(number);
}

std::shared_ptr<RemoteSubtreeSource> RemoteBackendServer::makeSource(quint64 number)
{
    const auto weak = weak_from_this();
    return std::make_shared<RemoteSubtreeSource>(
        worker,
        [weak, number](const QString &frame) {
            if (const auto server = weak.lock())
                Q_EMIT server->sendRequested(number, frame);
        },
        [weak, number](const QString &id) {
            if (const auto server = weak.lock())
                Q_EMIT server->clientNamed(number, id);
        });
}

void RemoteBackendServer::onTextMessageReceived(quint64 number, const QString &frame)
{
    Connection *const connection = find(number);
    if (!connection || connection->isClosing)
        return;
    const qint64 size = frame.size() * qint64(sizeof(QChar)) + FrameBytes;
    const auto added
        = frames->add(number, size, [source = connection->source, frame] { source->receive(frame); });
    if (added != Frames::Added::Full)
        return;
    frames->drop(number);
    closeOverfull(*connection, "received frames");
}

void RemoteBackendServer::onClientNamed(quint64 number, const QString &id)
{
    Connection *const connection = find(number);
    if (!connection)
        return;
    connection->status.reset();
    connection->statusPath.clear();
    if (id.isEmpty() || id.size() > LongestId
        || RepositoryProvider::getInstance()->getPathElementsFromPath(id).size() != 1) {
        FrameworkLog().warning() << "RemoteBackendServer::onTextMessageReceived() no status for client id='"
                                 << id.left(LongestId) << "'";
        return;
    }
    connection->statusPath = StatusPath("remote_server", id);
    FrameworkLog().log() << "RemoteBackendServer::onTextMessageReceived() created status_path="
                         << connection->statusPath;
    if (MayCreateStatus()) {
        connection->status = std::make_unique<ShownAttribute>(connection->statusPath,
                                                              connection->socket->peerAddress().toString());
    }
}

void RemoteBackendServer::onSocketDisconnected(quint64 number)
{
    const auto found = connections.find(number);
    if (found == connections.end())
        return;
    FrameworkLog().log() << "RemoteBackendServer::onSocketDisconnected() id=" << name;
    Connection connection = std::move(found->second);
    connections.erase(found);
    connection.socket->disconnect(this);
    connection.socket->deleteLater();
    frames->leave(number);
    dropOnWorker({std::move(connection.source)});
    if (!connection.statusPath.isEmpty()) {
        FrameworkLog().log() << "RemoteBackendServer::onSocketDisconnected() status_path="
                             << connection.statusPath;
    }
}

void RemoteBackendServer::sendTextMessage(quint64 number, const QString &frame)
{
    Connection *const connection = find(number);
    if (!connection || connection->isClosing || frame.isEmpty())
        return;
    QWebSocket &socket = *connection->socket;
    // What waits for the event loop is not the peer's fault.
    if (socket.bytesToWrite() > settings.limit)
        socket.flush();
    if (socket.bytesToWrite() > settings.limit) {
        closeOverfull(*connection, "unsent bytes");
        return;
    }
    socket.sendTextMessage(frame);
}

void RemoteBackendServer::closeOverfull(Connection &connection, const char *reason)
{
    FrameworkLog().warning() << "RemoteBackendServer::closeOverfull() id=" << name
                             << " status_path=" << connection.statusPath << " reason=" << reason;
    connection.socket->close(QWebSocketProtocol::CloseCodeTooMuchData); // may end the connection at once
}

/*! The end may take a while, in which nothing is done for the peer any more. */
void RemoteBackendServer::onSocketClosing(quint64 number)
{
    Connection *const connection = find(number);
    if (!connection || std::exchange(connection->isClosing, true))
        return;
    frames->leave(number);
    dropOnWorker({std::move(connection->source)});
}

/*! The end of a source waits for its running handlers, which the event thread must not. */
void RemoteBackendServer::dropOnWorker(std::vector<std::shared_ptr<RemoteSubtreeSource>> &&sources)
{
    // The worker lives until it has done this.
    if (worker)
        worker->post([dropped = std::move(sources), own = worker, queue = frames] {});
}

RemoteBackendServer::Connection *RemoteBackendServer::find(quint64 number)
{
    const auto found = connections.find(number);
    return found == connections.end() ? nullptr : &found->second;
}

} // namespace Tessellum::AppConfig::Backends::utils
