#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/storages/utils/RemoteStorageClient.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/ExceptionBarrier.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>
#include <QUrlQuery>

#include <utility>

namespace Tessellum::AppData::Storages::utils {

using AppConfig::utils::StatusAttributes;
using Notification::UpdatePoint;
using Notification::UpdateResult;
using Notification::utils::RunGuarded;
using Shared::Logging::FrameworkLog;

namespace {

constexpr qint64 DefaultLimit = 256 * 1024 * 1024;

const QString control = QStringLiteral("control");
const QString status = QStringLiteral("status");

AppConfig::utils::RepositoryProvider &Configuration()
{
    return *AppConfig::utils::RepositoryProvider::getInstance();
}

qint64 LimitOf(const QUrl &url)
{
    bool isNumber = false;
    const qint64 limit
        = QUrlQuery(url).queryItemValue(QStringLiteral("limit"), QUrl::FullyDecoded).toLongLong(&isNumber);
    return isNumber && limit > 0 ? limit : DefaultLimit;
}

QString IdOf(const QUrl &url)
{
    return QUrlQuery(url).queryItemValue(QStringLiteral("id"), QUrl::FullyDecoded);
}

std::shared_ptr<StatusAttributes> AttributesOf(const QString &id)
{
    if (id.isEmpty() || RemoteStorageNode::SplitPath(id).size() != 1) {
        FrameworkLog().warning() << "RemoteStorageClient::initialize() no status attribute for id=" << id;
        return nullptr;
    }
    return std::make_shared<StatusAttributes>(Configuration().getPathFromPathElements(
        {QStringLiteral("appdata"), QStringLiteral("storages"), QStringLiteral("remote_clients"), id}));
}

} // namespace

RemoteStorageClient::RemoteStorageClient(const QUrl &url, const QString &storageName)
    : RemoteStorageNode(IdOf(url), url)
    , AppDataRepositoryEventThreadUser(this)
    , limit(LimitOf(url))
    , mirror(*this, storageName)
{
    connect(this, &RemoteStorageClient::requestInitialization, this,
            &RemoteStorageClient::onInitializationRequested);
}

RemoteStorageClient::~RemoteStorageClient()
{
    controlHandle.reset();
    if (worker)
        worker->end();
    if (socket) {
        socket->disconnect(this);
        socket->close(QWebSocketProtocol::CloseCodeNormal);
    }
}

bool RemoteStorageClient::initialize()
{
    FrameworkLog().debug() << "RemoteStorageClient::initialize() id=" << getId();
    worker = AppData::utils::RepositoryProvider::getInstance()->getFrameWorkers().make();
    attributes = AttributesOf(getId());
    if (attributes) {
        attributes->provide(control, QString());
        observeControl();
    }
    Q_EMIT requestInitialization();
    return true;
}

void RemoteStorageClient::observeControl()
{
    const auto notifications = Configuration().getNotificationProvider();
    if (!notifications)
        return;
    const QString controlPath = attributes->pathOf(control);
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
    return attributes && attributes->isThere(status);
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
    if (attributes)
        attributes->set(status, QStringLiteral("established"));
    const QString init = ComposeText(queryItem(QStringLiteral("path")), RemoteStorageCommand::Init, getId(),
                                     QVariantHash{{QString(SupportsBinaryData), supportsBinaryData.load()}});
    Q_EMIT messageRequest(init);
}

void RemoteStorageClient::onDisconnected()
{
    if (attributes)
        attributes->set(status, QStringLiteral("disconnected"));
}

void RemoteStorageClient::onTextMessageReceived(const QString &message)
{
    queueFrame(message, qint64(message.size()) * qint64(sizeof(QChar)));
}

void RemoteStorageClient::onBinaryMessageReceived(const QByteArray &message)
{
    queueFrame(message, message.size());
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

QString RemoteStorageClient::queryItem(const QString &key) const
{
    return QUrlQuery(getUrl()).queryItemValue(key, QUrl::FullyDecoded);
}

void RemoteStorageClient::queueFrame(Frame frame, qint64 size)
{
    if (queuedBytes + size > limit) {
        // The peer tells more than can be done here; what it tells later is lost anyway.
        FrameworkLog().warning() << "RemoteStorageClient::queueFrame() too much has come in, closing id="
                                 << getId();
        socket->close(QWebSocketProtocol::CloseCodeTooMuchData);
        return;
    }
    queuedBytes += size;
    {
        const QMutexLocker locker(&frameMutex);
        frames.emplace_back(std::move(frame), size);
        if (std::exchange(isWorking, true))
            return;
    }
    postStep();
}

void RemoteStorageClient::postStep()
{
    if (worker) {
        worker->post([weak = weak_from_this()] {
            if (const auto client = weak.lock())
                client->takeFrames();
        });
    }
}

void RemoteStorageClient::takeFrames()
{
    std::vector<std::pair<Frame, qint64>> taken;
    {
        const QMutexLocker locker(&frameMutex);
        taken.swap(frames);
    }
    for (auto &[frame, size] : taken) {
        RunGuarded("RemoteStorageClient", [&, &received = frame] { takeFrame(received); });
        frame = QString();
        queuedBytes -= size;
    }
    RunGuarded("RemoteStorageClient", [&] { mirror.flush(); });
    {
        const QMutexLocker locker(&frameMutex);
        isWorking = !frames.empty();
        if (!isWorking)
            return;
    }
    postStep();
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
