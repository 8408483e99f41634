#include <appdata/storages/remote/RemoteStorageServer.h>
#include <appdata/storages/Storage.h>
#include <appdata/utils/RepositoryProvider.h>
#include <shared/hierarchy/HierarchyNode.h>
#include <shared/logging/FrameworkLog.h>

#include <QHostAddress>
#include <QUuid>
#include <QWebSocketProtocol>

#include <algorithm>

namespace Tessellum::AppData::Storages::utils {

using AppConfig::utils::ShownAttribute;
using AppData::utils::RepositoryProvider;
using Notification::utils::WebSocketListener;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;

namespace {

constexpr qint64 defaultLimit = 64LL * 1024 * 1024;
constexpr int longestId = 200; // of a client, in a line and in the tree

QString ShownPath(const QString &list, const QString &id)
{
    return QStringList{QStringLiteral("appdata"), QStringLiteral("storages"), list, id}.join(
        HierarchyNode::GetHierarchyNodePathSeparator());
}

} // namespace

RemoteStorageServer::RemoteStorageServer(const QString &storageName, const QUrl &serverUrl)
    : RemoteStorageNode(storageName, serverUrl)
    , AppDataRepositoryEventThreadUser(this)
    , port(serverUrl.port(-1))
    , limit(getLimit(defaultLimit))
    , mirror(*this, storageName, limit)
{
    connect(this, &RemoteStorageServer::requestInitialization, this,
            &RemoteStorageServer::onInitializationRequested);
    connect(this, &RemoteStorageServer::notificationMessageReady, this,
            &RemoteStorageServer::onNotificationMessageReady);
    connect(this, &RemoteStorageServer::notificationBinaryMessageReady, this,
            &RemoteStorageServer::onNotificationBinaryMessageReady);
    connect(this, &RemoteStorageServer::socketCloseRequested, this,
            &RemoteStorageServer::onSocketDisconnected);
}

RemoteStorageServer::~RemoteStorageServer()
{
    disconnect();
    if (!server)
        return;
    listening = false;
    server->disconnect(this);
    onServerClosed();
    delete server;
}

bool RemoteStorageServer::initialize()
{
    Q_EMIT requestInitialization();
    return true;
}

bool RemoteStorageServer::isRunning() const
{
    return listening;
}

bool RemoteStorageServer::createEntry(const QString &storageName, const QString &path,
                                      const EntryRecord &info)
{
    storeEntry(path, info);
    push(RemoteStorageCommand::CreateEntry, JoinPath(storageName, path),
         [&info](RemoteStorageMode mode) { return EncodeEntryInfo(info, mode); });
    return true;
}

bool RemoteStorageServer::createElement(const QString &path, const QString &name, const ElementValues &values)
{
    if (!storeElement(path, name, values))
        return false;
    push(RemoteStorageCommand::CreateElement, JoinPath(path, name),
         [&values](RemoteStorageMode mode) { return EncodeElement(values, mode); });
    return true;
}

bool RemoteStorageServer::updateElement(const QString &path, const QString &name, const ElementValues &values)
{
    if (!changeElement(path, name, values))
        return false;
    push(RemoteStorageCommand::UpdateElement, JoinPath(path, name),
         [&values](RemoteStorageMode mode) { return EncodeElement(values, mode); });
    return true;
}

bool RemoteStorageServer::removeEntry(const QString &path)
{
    if (!dropEntry(path))
        return false;
    push(RemoteStorageCommand::DeleteEntry, path, nullptr);
    return true;
}

void RemoteStorageServer::onInitializationRequested()
{
    if (server || !isStorageEntered(getId(), [this] { onInitializationRequested(); }))
        return;
    server = std::make_unique<WebSocketListener>(limit, this).release();
    connect(server, &WebSocketListener::connected, this, &RemoteStorageServer::onNewConnection);
    listen();
    if (IsPathElement(getId())) {
        shownPort = std::make_unique<ShownAttribute>(
            ShownPath(QStringLiteral("remote_server_ports"), getId()), int(server->getPort()));
    }
}

void RemoteStorageServer::listen()
{
    const QString bind = getQueryItem(QStringLiteral("bind"));
    QHostAddress address(QHostAddress::Any);
    if (!bind.isEmpty() && !address.setAddress(bind)) {
        FrameworkLog().warning() << "RemoteStorageServer::listen() found invalid address " << bind;
        return;
    }
    if (port < 0 || !server->listen(address, quint16(port))) {
        FrameworkLog().warning() << "RemoteStorageServer::listen() cannot listen on port " << port << ": "
                                 << server->getError();
        return;
    }
    listening = true;
}

void RemoteStorageServer::onNewConnection(QWebSocket *socket)
{
    const QString uuid = QUuid::createUuid().toString();
    connect(socket, &QWebSocket::textMessageReceived, this,
            [this, uuid](const QString &message) { onTextMessageReceived(uuid, message); });
    connect(socket, &QWebSocket::binaryMessageReceived, this,
            [this, uuid](const QByteArray &message) { onBinaryMessageReceived(uuid, message); });
    connect(socket, &QWebSocket::disconnected, this, [this, uuid] { onSocketDisconnected(uuid); });
    connect(socket, &QWebSocket::bytesWritten, this,
            [this, uuid](qint64 bytes) { onBytesWritten(uuid, bytes); });
    connections.add(uuid, socket, socket->peerAddress().toString());
    if (socket->state() == QAbstractSocket::UnconnectedState)
        onSocketDisconnected(uuid); // it left before it could be heard
}

void RemoteStorageServer::onNotificationMessageReady(const QString &connectionUuid, const QString &message)
{
    if (!message.isEmpty())
        deliver(connectionUuid, [&message](QWebSocket &socket) { return socket.sendTextMessage(message); });
}

void RemoteStorageServer::onNotificationBinaryMessageReady(const QString &connectionUuid,
                                                           const QByteArray &message)
{
    if (!message.isEmpty())
        deliver(connectionUuid, [&message](QWebSocket &socket) { return socket.sendBinaryMessage(message); });
}

template <class Send>
void RemoteStorageServer::deliver(const QString &connectionUuid, const Send &send)
{
    const auto [socket, decision] = connections.beginDelivery(connectionUuid);
    if (!socket)
        return;
    if (decision == RemoteStorageDelivery::Close) {
        socket->close(QWebSocketProtocol::CloseCodeTooMuchData, QString());
        Q_EMIT socketCloseRequested(connectionUuid);
        return;
    }
    if (decision == RemoteStorageDelivery::Send)
        connections.endDelivery(connectionUuid, send(*socket));
    if (socket)
        socket->flush();
}

void RemoteStorageServer::onBytesWritten(const QString &connectionUuid, qint64 bytes)
{
    connections.noteWritten(connectionUuid, bytes);
}

void RemoteStorageServer::onTextMessageReceived(const QString &connectionUuid, const QString &message)
{
    receive(connectionUuid, message);
}

void RemoteStorageServer::onBinaryMessageReceived(const QString &connectionUuid, const QByteArray &message)
{
    receive(connectionUuid, message);
}

void RemoteStorageServer::receive(const QString &connectionUuid, const RemoteStorageFrame &frame)
{
    if (SizeOf(frame) == 0)
        return; // no message, and not worth a step
    const auto step = [weak = weak_from_this(), connectionUuid, frame] {
        if (const auto self = weak.lock())
            self->takeFrame(connectionUuid, frame);
    };
    const qint64 size = SizeOf(frame) + FrameOverhead;
    auto added = frames ? frames->add(connectionUuid, size, step) : Frames::Added::Ended;
    if (added == Frames::Added::Ended) {
        const auto runner = getWorker();
        if (!runner)
            return;
        // Text takes two bytes a character here: behind the largest message there is room for others.
        frames = std::make_shared<Frames>(runner, 3 * limit + FrameOverhead);
        added = frames->add(connectionUuid, size, step);
    }
    if (added == Frames::Added::Full && connections.noteDrop(connectionUuid)) {
        FrameworkLog().warning()
            << "RemoteStorageServer::receive() drops messages of a peer that sends faster "
               "than they are worked off";
    }
}

void RemoteStorageServer::takeFrame(const QString &connectionUuid, const RemoteStorageFrame &frame)
{
    const auto *text = std::get_if<QString>(&frame);
    const RemoteStorageMessage message
        = text ? ParseRemoteStorageText(*text) : ParseRemoteStorageBinary(std::get<QByteArray>(frame));
    if (!message.isValid())
        return;
    if (CommandOfWord(message.command) != RemoteStorageCommand::Init) {
        mirror.take(message, text ? RemoteStorageMode::Text : RemoteStorageMode::Binary);
        mirror.flush();
    } else if (text) {
        answer(connectionUuid, message);
    }
}

void RemoteStorageServer::answer(const QString &connectionUuid, const RemoteStorageMessage &request)
{
    const auto peer = connections.beginAnswer(connectionUuid);
    if (!peer)
        return;
    const auto made = RemoteStorageSource::MakeAnswer(request, peer->isBinary);
    if (made) {
        connections.noteAnswer(connectionUuid, made->storage, made->isBinary);
        emitFrame(connectionUuid, made->frame);
    }
    for (auto held = connections.takeHeld(connectionUuid); !held.isEmpty();
         held = connections.takeHeld(connectionUuid)) {
        for (const RemoteStorageFrame &frame : qAsConst(held))
            emitFrame(connectionUuid, frame);
    }
    if (made)
        showPeer(connectionUuid, request.data.toString(), peer->address);
}

void RemoteStorageServer::showPeer(const QString &connectionUuid, const QString &clientId,
                                   const QString &address)
{
    std::shared_ptr<ShownAttribute> status;
    if (clientId.size() <= longestId && IsPathElement(clientId))
        status
            = std::make_shared<ShownAttribute>(ShownPath(QStringLiteral("remote_server"), clientId), address);
    else
        FrameworkLog().warning() << "RemoteStorageServer::showPeer() the id '" << clientId.left(longestId)
                                 << "' of a client cannot be shown";
    connections.setClient(connectionUuid, clientId, status);
}

void RemoteStorageServer::push(RemoteStorageCommand command, const QString &path,
                               const RemoteStorageSource::Payload &payload)
{
    const auto modes = connections.getModes();
    if (modes.isEmpty())
        return;
    const auto needs = [&modes](bool binary) {
        return std::any_of(modes.cbegin(), modes.cend(),
                           [binary](const auto &mode) { return mode.second == binary; });
    };
    const auto message = RemoteStorageSource::MakePush(command, path, payload, needs(false), needs(true));
    for (const auto &[uuid, isBinary] : modes) {
        const RemoteStorageFrame frame = message.frameFor(isBinary);
        if (!connections.hold(uuid, frame))
            emitFrame(uuid, frame);
    }
}

void RemoteStorageServer::emitFrame(const QString &connectionUuid, const RemoteStorageFrame &frame)
{
    if (const auto *text = std::get_if<QString>(&frame))
        Q_EMIT notificationMessageReady(connectionUuid, *text);
    else
        Q_EMIT notificationBinaryMessageReady(connectionUuid, std::get<QByteArray>(frame));
}

void RemoteStorageServer::onSocketDisconnected(const QString &connectionUuid)
{
    // What it sent and nobody has looked at goes with it: peers that come and go would pile it up.
    if (frames)
        frames->drop(connectionUuid);
    const RemoteStorageConnection connection = connections.take(connectionUuid);
    if (connection.socket) {
        connection.socket->disconnect(this);
        connection.socket->deleteLater();
    }
}

void RemoteStorageServer::onServerClosed()
{
    const QStringList uuids = connections.keys();
    for (const QString &uuid : uuids)
        onSocketDisconnected(uuid);
}

} // namespace Tessellum::AppData::Storages::utils
