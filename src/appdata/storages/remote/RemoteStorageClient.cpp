#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/storages/remote/RemoteStorageClient.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/ClientSocketGuard.h>
#include <notification/utils/ExceptionBarrier.h>
#include <notification/utils/SendWithoutDelay.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>
#include <QUrlQuery>

#include <utility>

namespace Tessellum::AppData::Storages::utils {

using AppConfig::utils::ShownAttribute;
using Notification::UpdatePoint;
using Notification::UpdateResult;
using Notification::utils::ClientSocketGuard;
using Notification::utils::RunGuarded;
using Shared::Logging::FrameworkLog;

namespace {

constexpr qint64 DefaultLimit = 256LL * 1024 * 1024;

const QString control = QStringLiteral("control");
const QString status = QStringLiteral("status");

AppConfig::utils::RepositoryProvider &Configuration()
{
    return *AppConfig::utils::RepositoryProvider::getInstance();
}

QString IdOf(const QUrl &url)
{
    return QUrlQuery(url).queryItemValue(QStringLiteral("id"), QUrl::FullyDecoded);
}

std::unique_ptr<ShownAttribute> AttributesOf(const QString &id)
{
    if (!RemoteStorageNode::IsPathElement(id))
        return nullptr;
    return std::make_unique<ShownAttribute>(Configuration().getPathFromPathElements(
        {QStringLiteral("appdata"), QStringLiteral("storages"), QStringLiteral("remote_clients"), id}));
}

} // namespace

RemoteStorageClient::RemoteStorageClient(const QUrl &url, const QString &nameOfStorage)
    : RemoteStorageNode(IdOf(url), url)
    , AppDataRepositoryEventThreadUser(this)
    , storageName(nameOfStorage)
    , limit(getLimit(DefaultLimit))
    , attributes(AttributesOf(getId()))
    , mirror(*this, storageName, limit)
{
    connect(this, &RemoteStorageClient::requestInitialization, this,
            &RemoteStorageClient::onInitializationRequested);
}

RemoteStorageClient::~RemoteStorageClient()
{
    controlHandle.reset();
    if (socket) {
        socket->disconnect(this);
        socket->close(QWebSocketProtocol::CloseCodeNormal);
    }
}

bool RemoteStorageClient::initialize()
{
    FrameworkLog().debug() << "RemoteStorageClient::initialize() id=" << getId();
    if (attributes) {
        attributes->showChild(control, QString());
        observeControl();
    } else {
        FrameworkLog().warning() << "RemoteStorageClient::initialize() no status attribute for id="
                                 << getId();
    }
    Q_EMIT requestInitialization();
    return true;
}

void RemoteStorageClient::observeControl()
{
    const auto notifications = Configuration().getNotificationProvider();
    if (!notifications)
        return;
    const QString controlPath = attributes->getChildPath(control);
    controlHandle = notifications->registerUpdateHandler(
        controlPath,
        [weak = weak_from_this(), controlPath](const QString &path, const UpdatePoint &,
                                               const UpdateResult &result, const QVariant &,
                                               const QVariant &value) {
            const auto client = weak.lock();
            // The id may hold what stands for other paths.
            if (!client || path != controlPath || result != UpdateResult::Ok)
                return;
            if (value.toString() == QLatin1String("close"))
                Q_EMIT client->requestedClose();
            else if (value.toString() == QLatin1String("connect"))
                Q_EMIT client->requestInitialization();
        },
        UpdatePoint::Done);
}

bool RemoteStorageClient::isRunning() const
{
    return attributes && Configuration().getRoot()->findChildByRelativePath(attributes->getChildPath(status));
}

bool RemoteStorageClient::createEntry(const QString &, const QString &path, const EntryRecord &info)
{
    storeEntry(path, info);
    return true;
}

bool RemoteStorageClient::createElement(const QString &path, const QString &name, const ElementValues &values)
{
    return storeElement(path, name, values);
}

bool RemoteStorageClient::updateElement(const QString &path, const QString &name, const ElementValues &values)
{
    return RemoteStorageNode::changeElement(path, name, values);
}

bool RemoteStorageClient::removeEntry(const QString &path)
{
    return dropEntry(path);
}

void RemoteStorageClient::onInitializationRequested()
{
    if (!isStorageEntered(storageName, [this] { onInitializationRequested(); }))
        return;
    // The map stays: with it the next contents find what is here already.
    clearEntries();
    if (!socket)
        makeSocket();
    socket->open(getUrl());
}

void RemoteStorageClient::makeSocket()
{
    connect(this, &RemoteStorageClient::messageRequest, this, &RemoteStorageClient::onMessageRequestReceived);
    connect(this, &RemoteStorageClient::messageRequestBinary, this,
            &RemoteStorageClient::onBinaryMessageRequestReceived);
    auto made = std::make_unique<QWebSocket>(QString(), QWebSocketProtocol::Version13, this);
    socket = made.release(); // this is its parent
    socket->setMaxAllowedIncomingMessageSize(quint64(limit));
    socket->setMaxAllowedIncomingFrameSize(quint64(limit));
    connect(socket, &QWebSocket::textMessageReceived, this, &RemoteStorageClient::onTextMessageReceived);
    connect(socket, &QWebSocket::binaryMessageReceived, this, &RemoteStorageClient::onBinaryMessageReceived);
    connect(socket, &QWebSocket::connected, this, &RemoteStorageClient::onConnected);
    connect(socket, &QWebSocket::disconnected, this, &RemoteStorageClient::onDisconnected);
    connect(socket, QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error), this,
            &RemoteStorageClient::onDisconnected);
    connect(this, &RemoteStorageClient::requestedClose, socket,
            [this] { socket->close(QWebSocketProtocol::CloseCodeNormal); });
}

void RemoteStorageClient::onConnected()
{
    Notification::utils::SendWithoutDelay(*socket);
    ClientSocketGuard::Guard(socket, limit, ClientSocketGuard::End::Client);
    if (attributes)
        attributes->showChild(status, QStringLiteral("established"));
    const QString init
        = ComposeText(getQueryItem(QStringLiteral("path")), RemoteStorageCommand::Init, getId(),
                      QVariantHash{{QString(SupportsBinaryData), supportsBinaryData.load()}});
    Q_EMIT messageRequest(init);
}

void RemoteStorageClient::onDisconnected()
{
    if (attributes)
        attributes->showChild(status, QStringLiteral("disconnected"));
}

void RemoteStorageClient::onTextMessageReceived(const QString &message)
{
    queueFrame(message);
}

void RemoteStorageClient::onBinaryMessageReceived(const QByteArray &message)
{
    queueFrame(message);
}

void RemoteStorageClient::onMessageRequestReceived(const QString &message)
{
    if (socket && !message.isEmpty())
        socket->sendTextMessage(message);
}

void RemoteStorageClient::onBinaryMessageRequestReceived(const QByteArray &message)
{
    if (socket && !message.isEmpty())
        socket->sendBinaryMessage(message);
}

void RemoteStorageClient::queueFrame(const Frame &frame)
{
    if (SizeOf(frame) == 0)
        return; // no message, and not worth a step
    const qint64 size = SizeOf(frame) + FrameOverhead;
    bool isTooMuch = false;
    std::shared_ptr<void> step;
    {
        const QMutexLocker locker(&frameMutex);
        // Text takes two bytes a character here: behind the largest message there is room for its changes.
        isTooMuch = !frames.empty() && frameBytes + size > 3 * limit;
        if (!isTooMuch) {
            frames.push_back(frame);
            frameBytes += size;
            // One step takes all; more of them would pile up as long as frames come faster than they go.
            if (waitingStep.expired())
                waitingStep = step = std::make_shared<char>();
        }
    }
    if (isTooMuch) {
        // The peer tells more than can be done here; what it tells later is lost anyway.
        FrameworkLog().warning() << "RemoteStorageClient::queueFrame() too much has come in, closing id="
                                 << getId();
        socket->close(QWebSocketProtocol::CloseCodeTooMuchData);
        return;
    }
    const auto runner = step ? getWorker() : nullptr;
    if (runner) {
        runner->post([weak = weak_from_this(), step] {
            if (const auto client = weak.lock())
                client->takeFrames();
        });
    }
}

/*! Takes all that have come: what is pushed in a row is on its way together. */
void RemoteStorageClient::takeFrames()
{
    std::vector<Frame> taken;
    {
        const QMutexLocker locker(&frameMutex);
        taken.swap(frames);
        frameBytes = 0;
        waitingStep.reset();
    }
    for (Frame &frame : taken) {
        if (AppData::utils::RepositoryProvider::getInstance()->getThreadPool().isRunning())
            RunGuarded("RemoteStorageClient", [&] { takeFrame(frame); });
        frame = QString(); // it may be large
    }
    RunGuarded("RemoteStorageClient", [&] { mirror.flush(); });
}

void RemoteStorageClient::takeFrame(const Frame &frame)
{
    const QString *const text = std::get_if<QString>(&frame);
    const RemoteStorageMessage message
        = text ? ParseRemoteStorageText(*text) : ParseRemoteStorageBinary(std::get<QByteArray>(frame));
    if (CommandOfWord(message.command) == RemoteStorageCommand::Init)
        supportsBinaryData = message.options.value(SupportsBinaryData).toBool();
    mirror.take(message, text ? RemoteStorageMode::Text : RemoteStorageMode::Binary);
}

} // namespace Tessellum::AppData::Storages::utils
