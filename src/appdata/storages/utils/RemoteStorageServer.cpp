#include <appdata/storages/Storage.h>
#include <appdata/storages/utils/RemoteStorageServer.h>
#include <appdata/utils/RepositoryProvider.h>
#include <shared/hierarchy/HierarchyNode.h>
#include <shared/logging/FrameworkLog.h>

#include <QHostAddress>
#include <QMutexLocker>
#include <QTimer>
#include <QUrlQuery>
#include <QUuid>
#include <QWebSocketProtocol>

#include <algorithm>

namespace Tessellum::AppData::Storages::utils {

using AppConfig::utils::ShownAttribute;
using AppData::utils::RepositoryProvider;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;

namespace {

constexpr qint64 defaultLimit = 64 * 1024 * 1024;
constexpr qint64 mostHeldBytes = 0x200000;
constexpr qint64 frameOverhead = 256; // of a waiting frame, beside its bytes
constexpr int acceptPause = 1000; // milliseconds
constexpr int mostPendingConnections = 1000000; // beyond what a process can have

qint64 LimitOf(const QUrl &url)
{
    const qint64 limit = QUrlQuery(url).queryItemValue(QStringLiteral("limit")).toLongLong();
    return limit > 0 ? limit : defaultLimit;
}

/*! Whether \a id can stand as one element of a path. */
bool IsElement(const QString &id)
{
    return !id.isEmpty() && !id.contains(HierarchyNode::GetHierarchyNodePathSeparator());
}

QString ShownPath(const QString &list, const QString &id)
{
    return QStringList{QStringLiteral("appdata"), QStringLiteral("storages"), list, id}.join(
        HierarchyNode::GetHierarchyNodePathSeparator());
}

qint64 SizeOf(const RemoteStorageFrame &frame)
{
    if (const auto *text = std::get_if<QString>(&frame))
        return text->size() * qint64(sizeof(QChar));
    return std::get<QByteArray>(frame).size();
}

} // namespace

RemoteStorageServer::RemoteStorageServer(const QString &storageName, const QUrl &serverUrl)
    : RemoteStorageNode(storageName, serverUrl)
    , AppDataRepositoryEventThreadUser(this)
    , port(serverUrl.port(-1))
    , limit(LimitOf(serverUrl))
    , mirror(*this, storageName)
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
    dropConnections();
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
    if (server)
        return;
    server = std::make_unique<QWebSocketServer>(QStringLiteral("vlk"), QWebSocketServer::NonSecureMode, this)
                 .release();
    server->setMaxPendingConnections(mostPendingConnections);
    connect(server, &QWebSocketServer::newConnection, this, &RemoteStorageServer::onNewConnection);
    connect(server, &QWebSocketServer::closed, this, &RemoteStorageServer::onServerClosed);
    // Qt stops accepting for good when there is no descriptor left.
    connect(server, &QWebSocketServer::acceptError, this, [this] {
        if (!std::exchange(toldOfAcceptError, true))
            FrameworkLog().warning() << "RemoteStorageServer::onInitializationRequested() cannot accept: "
                                     << server->errorString();
        QTimer::singleShot(acceptPause, server, [this] { server->resumeAccepting(); });
    });
    listen();
    if (IsElement(getId())) {
        shownPort
            = std::make_shared<ShownAttribute>(ShownPath(QStringLiteral("remote_server_ports"), getId()),
                                               listening ? int(server->serverPort()) : 0);
    }
}

void RemoteStorageServer::listen()
{
    const QString bind = QUrlQuery(getUrl()).queryItemValue(QStringLiteral("bind"));
    QHostAddress address(QHostAddress::Any);
    if (!bind.isEmpty() && !address.setAddress(bind)) {
        FrameworkLog().warning() << "RemoteStorageServer::listen() found invalid address " << bind;
        return;
    }
    if (port < 0 || !server->listen(address, quint16(port))) {
        FrameworkLog().warning() << "RemoteStorageServer::listen() cannot listen on port " << port << ": "
                                 << server->errorString();
        return;
    }
    listening = true;
}

void RemoteStorageServer::onNewConnection()
{
    toldOfAcceptError = false;
    while (server && server->hasPendingConnections())
        addConnection(server->nextPendingConnection());
}

void RemoteStorageServer::addConnection(QWebSocket *socket)
{
    socket->setMaxAllowedIncomingMessageSize(quint64(limit));
    socket->setMaxAllowedIncomingFrameSize(quint64(limit));
    socket->setOutgoingFrameSize(QWebSocket::maxOutgoingFrameSize()); // a message is one frame
    const QString uuid = QUuid::createUuid().toString();
    connect(socket, &QWebSocket::textMessageReceived, this,
            [this, uuid](const QString &message) { onTextMessageReceived(uuid, message); });
    connect(socket, &QWebSocket::binaryMessageReceived, this,
            [this, uuid](const QByteArray &message) { onBinaryMessageReceived(uuid, message); });
    connect(socket, &QWebSocket::disconnected, this, [this, uuid] { onSocketDisconnected(uuid); });
    connect(socket, &QWebSocket::bytesWritten, this,
            [this, uuid](qint64 bytes) { onBytesWritten(uuid, bytes); });
    RemoteStorageConnection connection;
    connection.socket = socket;
    const QMutexLocker locker(&mutex);
    connections.insert(uuid, connection);
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
    QPointer<QWebSocket> socket;
    auto delivery = RemoteStorageDelivery::Drop;
    {
        const QMutexLocker locker(&mutex);
        const auto connection = connections.find(connectionUuid);
        if (connection == connections.end() || !connection->socket)
            return;
        socket = connection->socket;
        QElapsedTimer &timer = connection->elapsedTimer;
        delivery = JudgeDelivery(timer.isValid() ? timer.elapsed() : -1, connection->bytesInFlight);
        if (!timer.isValid())
            timer.start();
        connection->isSending = delivery == RemoteStorageDelivery::Send;
    }
    if (delivery == RemoteStorageDelivery::Close) {
        socket->close(QWebSocketProtocol::CloseCodeTooMuchData, QString());
        Q_EMIT socketCloseRequested(connectionUuid);
        return;
    }
    if (delivery == RemoteStorageDelivery::Send) {
        const qint64 sent = send(*socket);
        const QMutexLocker locker(&mutex);
        const auto connection = connections.find(connectionUuid);
        if (connection != connections.end()) {
            // A part of it may have been reported as written already.
            connection->isSending = false;
            connection->bytesInFlight = std::max<qint64>(0, connection->bytesInFlight + sent);
        }
    }
    if (socket)
        socket->flush();
}

void RemoteStorageServer::onBytesWritten(const QString &connectionUuid, qint64 bytes)
{
    const QMutexLocker locker(&mutex);
    const auto connection = connections.find(connectionUuid);
    if (connection == connections.end())
        return;
    connection->bytesInFlight -= bytes;
    if (!connection->isSending)
        connection->bytesInFlight = std::max<qint64>(0, connection->bytesInFlight);
    connection->elapsedTimer.invalidate();
}

void RemoteStorageServer::onTextMessageReceived(const QString &connectionUuid, const QString &message)
{
    receive(connectionUuid, message, message.size() * qint64(sizeof(QChar)));
}

void RemoteStorageServer::onBinaryMessageReceived(const QString &connectionUuid, const QByteArray &message)
{
    receive(connectionUuid, message, message.size());
}

void RemoteStorageServer::receive(const QString &connectionUuid, const RemoteStorageFrame &frame, qint64 size)
{
    QPointer<QWebSocket> socket;
    const qint64 cost = size + frameOverhead;
    bool isDropped = false;
    bool isTold = false;
    {
        const QMutexLocker locker(&mutex);
        const auto connection = connections.find(connectionUuid);
        if (connection == connections.end() || !connection->socket)
            return;
        socket = connection->socket;
        isDropped = connection->queuedBytes > 0 && connection->queuedBytes + cost > limit;
        if (isDropped)
            isTold = std::exchange(connection->toldOfDrops, true);
        else
            connection->queuedBytes += cost;
    }
    if (isDropped) {
        if (!isTold)
            FrameworkLog().warning() << "RemoteStorageServer::receive() drops messages of a peer that sends "
                                        "faster than they are worked off";
        return;
    }
    const QString address = socket->peerAddress().toString();
    post([weak = weak_from_this(), connectionUuid, frame, cost, address] {
        const auto self = weak.lock();
        if (!self)
            return;
        self->takeFrame(connectionUuid, frame, address);
        const QMutexLocker locker(&self->mutex);
        const auto connection = self->connections.find(connectionUuid);
        if (connection != self->connections.end())
            connection->queuedBytes -= cost;
    });
}

bool RemoteStorageServer::post(const std::function<void()> &step)
{
    if (worker && worker->post(step))
        return true;
    // The node of an application's own storage outlives a run of the repository.
    worker = RepositoryProvider::getInstance()->getFrameWorkers().make();
    return worker && worker->post(step);
}

void RemoteStorageServer::takeFrame(const QString &connectionUuid, const RemoteStorageFrame &frame,
                                    const QString &address)
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
        answer(connectionUuid, message, address);
    }
}

void RemoteStorageServer::answer(const QString &connectionUuid, const RemoteStorageMessage &request,
                                 const QString &address)
{
    bool isBinary = false;
    {
        const QMutexLocker locker(&mutex);
        const auto connection = connections.find(connectionUuid);
        if (connection == connections.end())
            return;
        ++connection->answers;
        isBinary = connection->supportsBinaryData;
    }
    const auto made = RemoteStorageSource::MakeAnswer(request, isBinary);
    if (made) {
        {
            const QMutexLocker locker(&mutex);
            const auto connection = connections.find(connectionUuid);
            if (connection == connections.end())
                return;
            connection->storage = made->storage;
            connection->supportsBinaryData = made->isBinary;
        }
        emitFrame(connectionUuid, made->frame);
    }
    releaseHeld(connectionUuid);
    if (made)
        showPeer(connectionUuid, request.data.toString(), address);
}

void RemoteStorageServer::releaseHeld(const QString &connectionUuid)
{
    for (;;) {
        QList<RemoteStorageFrame> frames;
        {
            const QMutexLocker locker(&mutex);
            const auto connection = connections.find(connectionUuid);
            if (connection == connections.end())
                return;
            if (connection->held.isEmpty()) {
                --connection->answers;
                return;
            }
            frames.swap(connection->held);
            connection->heldBytes = 0;
        }
        for (const RemoteStorageFrame &frame : qAsConst(frames))
            emitFrame(connectionUuid, frame);
    }
}

void RemoteStorageServer::showPeer(const QString &connectionUuid, const QString &clientId,
                                   const QString &address)
{
    std::shared_ptr<ShownAttribute> status;
    if (IsElement(clientId))
        status
            = std::make_shared<ShownAttribute>(ShownPath(QStringLiteral("remote_server"), clientId), address);
    else
        FrameworkLog().warning() << "RemoteStorageServer::showPeer() the id '" << clientId
                                 << "' of a client cannot be shown";
    const QMutexLocker locker(&mutex);
    const auto connection = connections.find(connectionUuid);
    if (connection == connections.end())
        return; // the status goes behind the mutex, being older than its lock
    connection->clientId = clientId;
    connection->status.swap(status);
}

void RemoteStorageServer::push(RemoteStorageCommand command, const QString &path,
                               const RemoteStorageSource::Payload &payload)
{
    QList<QPair<QString, bool>> targets;
    bool needsText = false;
    bool needsBinary = false;
    {
        const QMutexLocker locker(&mutex);
        for (auto connection = connections.cbegin(); connection != connections.cend(); ++connection) {
            targets.append({connection.key(), connection->supportsBinaryData});
            (connection->supportsBinaryData ? needsBinary : needsText) = true;
        }
    }
    if (targets.isEmpty())
        return;
    const auto message = RemoteStorageSource::MakePush(command, path, payload, needsText, needsBinary);
    for (const auto &[uuid, isBinary] : qAsConst(targets)) {
        const RemoteStorageFrame frame = message.frameFor(isBinary);
        if (!hold(uuid, frame))
            emitFrame(uuid, frame);
    }
}

/*! True where the frame must wait for an answer, or gets lost as it would behind one. */
bool RemoteStorageServer::hold(const QString &connectionUuid, const RemoteStorageFrame &frame)
{
    const QMutexLocker locker(&mutex);
    const auto connection = connections.find(connectionUuid);
    if (connection == connections.end() || connection->answers == 0)
        return false;
    if (connection->heldBytes <= mostHeldBytes) {
        connection->held.append(frame);
        connection->heldBytes += SizeOf(frame) + frameOverhead;
    }
    return true;
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
    RemoteStorageConnection connection; // what it holds goes behind the mutex
    {
        const QMutexLocker locker(&mutex);
        connection = connections.take(connectionUuid);
    }
    if (connection.socket) {
        connection.socket->disconnect(this);
        connection.socket->deleteLater();
    }
}

void RemoteStorageServer::onServerClosed()
{
    listening = false;
    if (shownPort)
        shownPort->show(0);
    dropConnections();
}

void RemoteStorageServer::dropConnections()
{
    QStringList uuids;
    {
        const QMutexLocker locker(&mutex);
        uuids = connections.keys();
    }
    for (const QString &uuid : qAsConst(uuids))
        onSocketDisconnected(uuid);
}

} // namespace Tessellum::AppData::Storages::utils
