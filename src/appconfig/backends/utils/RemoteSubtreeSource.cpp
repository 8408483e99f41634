#include <appconfig/attributes/Attribute.h>
#include <appconfig/backends/utils/RemoteSubtreeSource.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/AttributesQueryProvider.h>
#include <appconfig/utils/RepositoryProvider.h>

#include <QMutexLocker>

#include <utility>

namespace Tessellum::AppConfig::Backends::utils {

using AppConfig::utils::ReadAttributeValue;
using AppConfig::utils::RepositoryProvider;
using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

/*! As it stands in a message, where an invalid value is left out. */
QByteArray ValueInForce(const std::shared_ptr<const Attributes::Attribute> &attribute)
{
    QVariant value;
    if (!attribute || !ReadAttributeValue(*attribute, nullptr, value, QMetaType::UnknownType))
        return QByteArray();
    return SerializeValue(value);
}

} // namespace

RemoteSubtreeSource::RemoteSubtreeSource(const std::shared_ptr<Notification::utils::FrameWorker> &frameWorker,
                                         const Send &sendFrame, const ClientNamed &named)
    : worker(frameWorker)
    , send(sendFrame)
    , clientNamed(named)
{ }

RemoteSubtreeSource::~RemoteSubtreeSource() = default;

void RemoteSubtreeSource::receive(const QString &frame)
{
    const RemoteMessage message = ParseRemoteMessage(frame);
    if (!message.isValid())
        return;
    if (message.command == RemoteCommand::Init) {
        initialize(message);
        return;
    }
    if (basePath.isEmpty())
        return;
    switch (message.command) {
    case RemoteCommand::Read:
        answerRead(message.path);
        break;
    case RemoteCommand::Write:
        write(message);
        break;
    case RemoteCommand::Rewrite:
        // No update: it would tell everybody of nothing new, and could undo what another has just set.
        answer(RemoteCommand::Write, message.path, ValueInForce(find(message.path)));
        break;
    default:
        break;
    }
}

void RemoteSubtreeSource::initialize(const RemoteMessage &message)
{
    const auto query = RepositoryProvider::getInstance()->getQueryProvider();
    const auto root = query ? query->findAttribute(message.path) : nullptr;
    if (!root)
        return;
    handles.clear();
    {
        const QMutexLocker locker(&mutex);
        changedPaths.clear();
        changesOfPath.clear();
    }
    told.clear();
    answered.clear();
    basePath = root->getPath();
    // First, so that nothing that changes meanwhile is missed.
    registerHandlers();
    sendSubtree(message.path);
    clientNamed(DeserializeValue(message.data).toString());
}

void RemoteSubtreeSource::registerHandlers()
{
    const auto notifications = RepositoryProvider::getInstance()->getNotificationProvider();
    if (!notifications)
        return;
    const QString pattern = absolutePath(QStringLiteral("*"));
    const auto noted
        = [weak = weak_from_this(), prefix = pattern.chopped(1)](const QString &path, Change change) {
              if (const auto source = weak.lock(); source && path.startsWith(prefix))
                  source->note(path.mid(prefix.size()), change);
          };
    handles.push_back(notifications->registerCreateHandler(
        pattern,
        [noted](const QString &path, const CreatePoint &, const bool &created) {
            if (created)
                noted(path, Created);
        },
        CreatePoint::Done));
    handles.push_back(notifications->registerUpdateHandler(
        pattern,
        [noted](const QString &path, const UpdatePoint &, const UpdateResult &, const QVariant &,
                const QVariant &) { noted(path, Updated); },
        UpdatePoint::Done));
    handles.push_back(notifications->registerDeleteHandler(
        pattern,
        [noted](const QString &path, const DeletePoint &, const bool &deleted) {
            if (deleted)
                noted(path, Deleted);
        },
        DeletePoint::Done));
}

void RemoteSubtreeSource::sendSubtree(const QString &path)
{
    const auto query = RepositoryProvider::getInstance()->getQueryProvider();
    if (!query)
        return;
    RemoteSubtree subtree;
    const QString pattern = absolutePath(QStringLiteral("*"));
    const int prefixSize = pattern.size() - 1;
    for (const auto &attribute : query->findAttributes(pattern)) {
        const QString relative = attribute->getPath().mid(prefixSize);
        if (relative.isEmpty())
            continue; // went off the tree meanwhile
        const QByteArray bytes = ValueInForce(attribute);
        subtree.insert(relative, bytes.isNull() ? SerializeValue(QVariant()) : bytes);
        told.insert(relative, bytes);
    }
    sendMessage(RemoteCommand::Init, path, SerializeValue(ComposeRemoteSubtree(subtree)));
}

void RemoteSubtreeSource::answerRead(const QString &path)
{
    const QByteArray bytes = ValueInForce(find(path));
    if (!bytes.isNull())
        answer(RemoteCommand::Read, path, bytes);
}

void RemoteSubtreeSource::write(const RemoteMessage &message)
{
    // Whatever came of it, the peer hears what stands there afterwards.
    if (const auto manipulation = RepositoryProvider::getInstance()->getManipulationProvider()) {
        manipulation->updateAttribute(absolutePath(message.path), DeserializeValue(message.data),
                                      UpdatePoint::Done);
    }
    answer(RemoteCommand::Write, message.path, ValueInForce(find(message.path)));
}

void RemoteSubtreeSource::answer(RemoteCommand command, const QString &path, const QByteArray &bytes)
{
    // An answer is no "update": the next change of the path is told, whatever "update" told last.
    const auto last = told.find(path);
    if (last != told.end() && *last != bytes)
        *last = std::nullopt;
    else if (last == told.end() && !bytes.isNull())
        answered.insert(path);
    sendMessage(command, path, bytes);
}

void RemoteSubtreeSource::note(const QString &path, Change change)
{
    {
        const QMutexLocker locker(&mutex);
        int &changes = changesOfPath[path];
        if (!changes)
            changedPaths.append(path);
        changes |= change;
        if (std::exchange(isLookUnderWay, true))
            return;
    }
    worker->post([weak = weak_from_this()] {
        if (const auto source = weak.lock())
            source->sendChanges();
    });
}

void RemoteSubtreeSource::sendChanges()
{
    QStringList paths;
    QHash<QString, int> changes;
    {
        const QMutexLocker locker(&mutex);
        paths.swap(changedPaths);
        changes.swap(changesOfPath);
        isLookUnderWay = false;
    }
    for (const QString &path : qAsConst(paths))
        sendChange(path, changes.value(path));
}

void RemoteSubtreeSource::sendChange(const QString &path, int changes)
{
    const auto attribute = find(path);
    if (!attribute) {
        if (!(changes & Deleted))
            return;
        // What came and went between two looks was never there for the peer.
        const bool isKnown = told.remove(path) + int(answered.remove(path)) > 0;
        if (isKnown || !(changes & Created))
            sendMessage(RemoteCommand::Delete, path);
        return;
    }
    const QByteArray bytes = ValueInForce(attribute);
    const auto last = told.find(path);
    if (last != told.end() && *last == bytes)
        return;
    // The handler of the create may come behind that of an update, or of what the first answer held already.
    sendMessage(last == told.end() ? RemoteCommand::Create : RemoteCommand::Update, path, bytes);
    told.insert(path, bytes);
    answered.remove(path);
}

void RemoteSubtreeSource::sendMessage(RemoteCommand command, const QString &path, const QByteArray &bytes)
{
    RemoteMessage message;
    message.command = command;
    message.path = path;
    message.data = bytes;
    send(ComposeRemoteMessage(message));
}

QString RemoteSubtreeSource::absolutePath(const QString &path) const
{
    return RepositoryProvider::getInstance()->getPathFromPathElements({basePath, path});
}

RemoteSubtreeSource::AttributePtr RemoteSubtreeSource::find(const QString &path) const
{
    const auto query = RepositoryProvider::getInstance()->getQueryProvider();
    return query ? query->findAttribute(absolutePath(path)) : nullptr;
}

} // namespace Tessellum::AppConfig::Backends::utils
