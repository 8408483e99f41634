#include <appconfig/backends/utils/RemoteBackendClient.h>
#include <appconfig/backends/utils/RemoteBackendToAttributeMapper.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/utils/ClientSocketGuard.h>
#include <notification/utils/MakeNode.h>
#include <notification/utils/NotificationProvider.h>
#include <notification/utils/SendWithoutDelay.h>
#include <notification/utils/UrlLimit.h>
#include <shared/logging/FrameworkLog.h>

#include <QUrlQuery>
#include <QWebSocket>

using Shared::Logging::FrameworkLog;
using Tessellum::AppConfig::Attributes::AttributeAccess;
using Tessellum::AppConfig::Attributes::AttributeValueSource;
using Tessellum::AppConfig::utils::RepositoryProvider;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::UpdatePoint;
using Tessellum::Notification::UpdateResult;
using Tessellum::Notification::utils::ClientSocketGuard;

namespace Tessellum::AppConfig::Backends::utils {

namespace {

constexpr int ReadWrite = AttributeAccess::Read | AttributeAccess::Write;
constexpr qint64 DefaultLimit = 256LL * 1024 * 1024;
constexpr qint64 WaitingBytes = 16LL * 1024 * 1024; // of received frames, at least
constexpr qint64 FrameBytes = 128; // what a waiting frame takes beside its text

QString QueryItem(const QUrl &url, const char *name)
{
    return QUrlQuery(url).queryItemValue(QString::fromLatin1(name), QUrl::FullyDecoded);
}

} // namespace

RemoteBackendClientPtr RemoteBackendClient::Make(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node,
                                                 const QUrl &url)
{
    const auto limit = Notification::utils::ReadUrlLimit(url, DefaultLimit);
    if (!limit)
        return nullptr;
    auto client = Notification::utils::MakeEventThreadObject<RemoteBackendClient>(url, *limit);
    return client->initialize(node) ? client : nullptr;
}

RemoteBackendClient::RemoteBackendClient(const QUrl &serverUrl, qint64 messageLimit)
    : AppConfigRepositoryEventThreadUser(this)
    , url(serverUrl)
    , id(QueryItem(serverUrl, "id"))
    , limit(messageLimit)
    , waitingBytes(std::make_shared<std::atomic<qint64>>(0))
{ }

RemoteBackendClient::~RemoteBackendClient()
{
    // Waits for a handler at most until it finds this gone.
    control.reset();
    dropSocket();
    if (isEstablished)
        publishStatus(QStringLiteral("disconnected"));
}

bool RemoteBackendClient::initialize(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node)
{
    const std::weak_ptr<RemoteBackendClient> weak = getSharedFromThis();
    worker = RepositoryProvider::getInstance()->getFrameWorkers().make();
    if (!worker)
        return false;
    mirror = std::make_shared<RemoteSubtreeMirror>(
        node,
        [weak](const QString &frame) {
            if (const auto self = weak.lock())
                Q_EMIT self->sendRequested(frame);
        },
        [weak](const QString &path, const QVariant &initial) {
            const auto self = weak.lock();
            return self ? self->makeDetails(path, initial) : RemoteSubtreeMirror::Details();
        });
    // Queued from every thread, so that frames leave in the order in which they were given.
    connect(this, &RemoteBackendClient::sendRequested, this, &RemoteBackendClient::sendFrame,
            Qt::QueuedConnection);
    connect(this, &RemoteBackendClient::initializationRequested, this,
            &RemoteBackendClient::onInitializationRequested, Qt::QueuedConnection);
    connect(
        this, &RemoteBackendClient::closeRequested, this,
        [this] {
            if (socket)
                socket->close(QWebSocketProtocol::CloseCodeNormal);
        },
        Qt::QueuedConnection);
    makeControl();
    return true;
}

void RemoteBackendClient::makeControl()
{
    const auto *const repository = RepositoryProvider::getInstance();
    if (repository->getPathElementsFromPath(id) != QStringList(id) || id.isEmpty()) {
        FrameworkLog().warning() << "RemoteBackendClient::makeControl() the id '" << id
                                 << "' is no name of a node, no control and status attributes";
        return;
    }
    const auto manipulation = repository->getManipulationProvider();
    const auto notifications = repository->getNotificationProvider();
    if (!manipulation || !notifications)
        return;
    basePath = QStringList(
        {QStringLiteral("appconfig"), QStringLiteral("backends"), QStringLiteral("remote_clients"), id});
    const QString path
        = repository->getPathFromPathElements(basePath + QStringList(QStringLiteral("control")));
    // It stands before the load ends, so that whoever waited for the backend can write to it.
    manipulation->createAttribute(path, QVariant(), CreatePoint::Done, ReadWrite);
    const std::weak_ptr<RemoteBackendClient> weak = getSharedFromThis();
    control = notifications->registerUpdateHandler(
        path,
        [weak](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
               const QVariant &value) {
            const auto self = weak.lock();
            if (self && result == UpdateResult::Ok)
                self->onControl(value.toString());
        },
        UpdatePoint::Done);
}

void RemoteBackendClient::onControl(const QString &command)
{
    if (command == QLatin1String("close")) {
        Q_EMIT closeRequested();
    } else if (command == QLatin1String("connect")) {
        // A load that still waits would wait for ever for the answer on the old connection.
        endInitialization();
        Q_EMIT initializationRequested();
    }
}

bool RemoteBackendClient::requestInitialization(const Callback &callback)
{
    if (!mirror->requestInitialization(callback))
        return false;
    Q_EMIT initializationRequested();
    return true;
}

bool RemoteBackendClient::cancelInitialization()
{
    return mirror->cancelInitialization();
}

bool RemoteBackendClient::read(const QString &path, QVariant &out)
{
    return mirror->read(path, out);
}

bool RemoteBackendClient::write(const QString &path, const QVariant &value)
{
    return mirror->write(path, value);
}

bool RemoteBackendClient::hasPath() const
{
    return !QueryItem(url, "path").isEmpty();
}

RemoteSubtreeMirror::Details RemoteBackendClient::makeDetails(const QString &path, const QVariant &initial)
{
    RemoteSubtreeMirror::Details details;
    details.reader = [path, initial](const QVariant &stored, QVariant &out) {
        return ReadProperty(path, initial, stored, out);
    };
    details.writer = [path](QVariant &stored, const QVariant &in) { return WriteProperty(path, stored, in); };
    details.value = QVariant::fromValue(getSharedFromThis());
    details.access = ReadWrite;
    details.valueSource = AttributeValueSource::Functions;
    return details;
}

void RemoteBackendClient::onInitializationRequested()
{
    FrameworkLog().log() << "RemoteBackendClient::onInitializationRequested() id=" << describedUrl();
    // A socket that has been open keeps what it had read of a message.
    dropSocket();
    makeSocket();
    socket->open(url);
}

void RemoteBackendClient::makeSocket()
{
    socket = std::make_unique<QWebSocket>(QString(), QWebSocketProtocol::Version13, this).release();
    isEndTold = false;
    socket->setMaxAllowedIncomingFrameSize(static_cast<quint64>(limit));
    socket->setMaxAllowedIncomingMessageSize(static_cast<quint64>(limit));
    socket->setOutgoingFrameSize(QWebSocket::maxOutgoingFrameSize()); // a message is one frame
    connect(socket, &QWebSocket::connected, this, &RemoteBackendClient::onConnected);
    connect(socket, &QWebSocket::disconnected, this, &RemoteBackendClient::onDisconnected);
    connect(socket, QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error), this,
            &RemoteBackendClient::onDisconnected);
    connect(socket, &QWebSocket::textMessageReceived, this, &RemoteBackendClient::onTextMessageReceived);
}

void RemoteBackendClient::dropSocket()
{
    if (!socket)
        return;
    socket->disconnect(this);
    if (socket->state() == QAbstractSocket::ConnectedState)
        socket->close(QWebSocketProtocol::CloseCodeNormal);
    else
        socket->abort();
    socket->deleteLater();
    socket = nullptr;
}

void RemoteBackendClient::onConnected()
{
    FrameworkLog().log() << "RemoteBackendClient::onConnected() id=" << describedUrl();
    Notification::utils::SendWithoutDelay(*socket);
    ClientSocketGuard::Guard(socket, limit, ClientSocketGuard::End::Client);
    isEstablished = true;
    publishStatus(QStringLiteral("established"));
    const QString frame
        = ComposeRemoteMessage({RemoteCommand::Init, QueryItem(url, "path"), SerializeValue(id)});
    if (frame.isEmpty())
        endInitialization(); // nothing was asked, so no answer comes
    else
        socket->sendTextMessage(frame);
}

void RemoteBackendClient::onDisconnected()
{
    // Qt tells of most ends twice, as an error and as an end.
    if (std::exchange(isEndTold, true))
        return;
    FrameworkLog().log() << "RemoteBackendClient::onDisconnected() id=" << describedUrl();
    endInitialization();
    if (socket->error() != QAbstractSocket::UnknownSocketError) {
        FrameworkLog().warning() << "RemoteBackendClient::onDisconnected() error: " << socket->errorString();
    }
    isEstablished = false;
    publishStatus(QStringLiteral("disconnected"));
}

void RemoteBackendClient::onTextMessageReceived(const QString &frame)
{
    const qint64 size = frame.size() * qint64(sizeof(QChar)) + FrameBytes;
    if (waitingBytes->fetch_add(size) + size > 2 * limit + WaitingBytes) {
        waitingBytes->fetch_sub(size);
        giveUp("received frames");
        return;
    }
    worker->post([target = mirror, waiting = waitingBytes, size, frame] {
        waiting->fetch_sub(size);
        target->receive(frame);
    });
}

void RemoteBackendClient::sendFrame(const QString &frame)
{
    if (!socket || socket->state() != QAbstractSocket::ConnectedState)
        return;
    // What waits for the event loop is not the peer's fault.
    if (socket->bytesToWrite() > limit)
        socket->flush();
    if (socket->bytesToWrite() > limit)
        giveUp("unsent bytes");
    else
        socket->sendTextMessage(frame);
}

void RemoteBackendClient::giveUp(const char *reason)
{
    FrameworkLog().warning() << "RemoteBackendClient::giveUp() id=" << describedUrl() << " reason=" << reason;
    socket->abort();
}

/*! One after the other, so that the last one told is the one that stands. */
void RemoteBackendClient::publishStatus(const QString &text)
{
    if (basePath.isEmpty())
        return;
    const QString path = RepositoryProvider::getInstance()->getPathFromPathElements(
        basePath + QStringList(QStringLiteral("status")));
    status->add(path, path, ToRemoteValue(text));
}

/*! Behind the frames that came before. A worker that has ended is that of a repository that stops, which ends
 * a load that waits by itself. */
void RemoteBackendClient::endInitialization()
{
    worker->post([target = mirror] { target->endInitialization(); });
}

QString RemoteBackendClient::describedUrl() const
{
    return url.toString(QUrl::RemovePassword);
}

} // namespace Tessellum::AppConfig::Backends::utils
