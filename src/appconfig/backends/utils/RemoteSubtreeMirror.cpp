#include <appconfig/backends/utils/RemoteSubtreeMirror.h>
#include <appconfig/interfaces/CustomAttributeDataInterface.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/LiveNode.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/utils/PoolWait.h>
#include <shared/conversion/FlatJson.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>

#include <algorithm>
#include <utility>
#include <vector>

using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;
using Tessellum::AppConfig::Attributes::AttributeAccess;
using Tessellum::AppConfig::Interfaces::CustomAttributeDataInterface;
using Tessellum::AppConfig::utils::RepositoryProvider;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::DeletePoint;
using Tessellum::Notification::UpdatePoint;

namespace Tessellum::AppConfig::Backends::utils {

namespace {

constexpr int MaximumPending = 1000; // updates that may wait for the tree before frames wait for them
constexpr int ReadWrite = AttributeAccess::Read | AttributeAccess::Write;

/*! The functions of a mirror attribute that is created after the load. */
class ClientAttributeMapper : public CustomAttributeDataInterface
{
public:
    explicit ClientAttributeMapper(RemoteSubtreeMirror::Details mirrorDetails)
        : details(std::move(mirrorDetails))
    { }

    bool read(const QVariant &stored, QVariant &out) override
    {
        return details.reader && details.reader(stored, out);
    }
    bool write(QVariant &stored, const QVariant &in) override
    {
        return details.writer && details.writer(stored, in);
    }

private:
    const RemoteSubtreeMirror::Details details;
};

/*! No node has an empty name, and the search for one may end at another node. */
bool LeadsToNode(const QString &path)
{
    const auto elements = RepositoryProvider::getInstance()->getPathElementsFromPath(path);
    return !elements.isEmpty() && !elements.contains(QString());
}

/*! In the bytes that this process writes: another one may order the items of a hash differently. */
RemoteValue FromPeer(const QByteArray &serialized)
{
    return ToRemoteValue(serialized.isNull() ? QVariant() : DeserializeValue(serialized));
}

bool IsJsonObject(const QString &text)
{
    return Shared::Conversion::ReadFlatJson(text, [](const auto &) {});
}

template <class Observer>
void WaitForAll(const std::vector<std::shared_ptr<Observer>> &observers)
{
    auto &pool = RepositoryProvider::getInstance()->getThreadPool();
    for (const auto &observer : observers)
        Notification::utils::WaitForTask(pool, observer);
}

} // namespace

RemoteSubtreeMirror::RemoteSubtreeMirror(const std::weak_ptr<HierarchyNode> &backendNode, Send sendFrame,
                                         MakeDetails makeMirrorDetails)
    : node(backendNode)
    , send(std::move(sendFrame))
    , makeDetails(std::move(makeMirrorDetails))
{ }

bool RemoteSubtreeMirror::requestInitialization(Callback callback)
{
    const QMutexLocker locker(&mutex);
    if (initialization || !callback)
        return false;
    initialization = std::move(callback);
    return true;
}

RemoteSubtreeMirror::Callback RemoteSubtreeMirror::takeCallback()
{
    const QMutexLocker locker(&mutex);
    return std::exchange(initialization, nullptr);
}

bool RemoteSubtreeMirror::cancelInitialization()
{
    return takeCallback() != nullptr;
}

void RemoteSubtreeMirror::endInitialization()
{
    if (const Callback callback = takeCallback())
        callback({});
}

bool RemoteSubtreeMirror::read(const QString &path, QVariant &out)
{
    const QMutexLocker locker(&mutex);
    const auto entry = cache.constFind(path);
    if (entry == cache.constEnd()) {
        sendLocked(RemoteCommand::Read, path);
        return false;
    }
    out = entry->value;
    return true;
}

bool RemoteSubtreeMirror::isNews(const QString &path, const QByteArray &bytes)
{
    const QMutexLocker locker(&mutex);
    return cachedBytesLocked(path) != bytes;
}

/*! Null, which stands for an invalid value, where nothing is cached. */
QByteArray RemoteSubtreeMirror::cachedBytesLocked(const QString &path) const
{
    const auto entry = cache.constFind(path);
    return entry == cache.constEnd() ? QByteArray() : entry->bytes;
}

bool RemoteSubtreeMirror::write(const QString &path, const QVariant &value)
{
    const RemoteValue written = ToRemoteValue(value);
    // Composed before the mutex is taken, since a large value takes its time.
    const auto compose = [&] { return ComposeRemoteMessage({RemoteCommand::Write, path, written.bytes}); };
    QString frame = isNews(path, written.bytes) ? compose() : QString();

    const QMutexLocker locker(&mutex);
    const bool isEcho = updates->takeEcho(path, written.bytes);
    if (cachedBytesLocked(path) == written.bytes) {
        sendLocked(RemoteCommand::Rewrite, path);
    } else if (!isEcho) {
        cache[path] = written;
        send(frame.isEmpty() ? compose() : frame);
    }
    return true;
}

void RemoteSubtreeMirror::sendLocked(RemoteCommand command, const QString &path) const
{
    const QString frame = ComposeRemoteMessage({command, path, QByteArray()});
    if (!frame.isEmpty())
        send(frame);
}

/*! Empty where the node has gone. */
QString RemoteSubtreeMirror::localPath(const QString &path) const
{
    const auto root = AppConfig::utils::LockLiveNode(node);
    if (!root)
        return {};
    const auto rootPath = root->getNodePath();
    const QString full = rootPath->getFullPath();
    return full.isEmpty() ? QString() : rootPath->getPathFromPathElements({full, path});
}

void RemoteSubtreeMirror::receive(const QString &frame)
{
    const RemoteMessage message = ParseRemoteMessage(frame);
    if (!message.isValid())
        return;
    if (message.command == RemoteCommand::Init) {
        receiveSubtree(message);
        return;
    }
    if (!LeadsToNode(message.path))
        return;
    switch (message.command) {
    case RemoteCommand::Read:
    case RemoteCommand::Write:
    case RemoteCommand::Update:
        receiveValue(message);
        break;
    case RemoteCommand::Create:
        receiveCreate(message);
        break;
    case RemoteCommand::Delete:
        deletePaths({message.path});
        break;
    case RemoteCommand::Rewrite:
        receiveRewrite(message.path);
        break;
    case RemoteCommand::Init:
    case RemoteCommand::Unknown:
        break;
    }
}

void RemoteSubtreeMirror::receiveSubtree(const RemoteMessage &message)
{
    const QString text = DeserializeValue(message.data).toString();
    const RemoteSubtree subtree = ParseRemoteSubtree(text);
    if (answerInitialization(subtree))
        return;
    if (subtree.isEmpty() && !IsJsonObject(text)) {
        FrameworkLog().warning() << "RemoteSubtreeMirror::receiveSubtree() dropped a damaged subtree of path="
                                 << message.path;
        return;
    }
    compareSubtree(subtree);
}

/*! False where nobody awaits it. */
bool RemoteSubtreeMirror::answerInitialization(const RemoteSubtree &subtree)
{
    {
        const QMutexLocker locker(&mutex);
        if (!initialization)
            return false;
    }
    Entries entries;
    Values values;
    for (auto item = subtree.cbegin(); item != subtree.cend(); ++item) {
        if (!LeadsToNode(item.key()))
            continue;
        const RemoteValue value = FromPeer(item.value());
        entries.insert(item.key(), value);
        values.insert(item.key(), value.value);
    }
    Callback callback;
    {
        const QMutexLocker locker(&mutex);
        callback = std::exchange(initialization, nullptr);
        if (!callback)
            return false; // whoever awaited it has given up meanwhile
        cache.swap(entries);
    }
    callback(values);
    return true;
}

void RemoteSubtreeMirror::compareSubtree(const RemoteSubtree &subtree)
{
    QStringList present;
    {
        const QMutexLocker locker(&mutex);
        present = cache.keys();
    }
    QStringList gone;
    for (const QString &path : qAsConst(present)) {
        if (!subtree.contains(path))
            gone.append(path);
    }
    Entries appeared;
    for (auto item = subtree.cbegin(); item != subtree.cend(); ++item) {
        if (!std::binary_search(present.cbegin(), present.cend(), item.key()) && LeadsToNode(item.key()))
            appeared.insert(item.key(), FromPeer(item.value()));
    }
    // First what has gone: it takes along what stands beneath it.
    deletePaths(gone);
    createMirrors(appeared);
}

void RemoteSubtreeMirror::deletePaths(const QStringList &paths)
{
    updates->waitForAtMost(0);
    {
        const QMutexLocker locker(&mutex);
        for (const QString &path : paths)
            cache.remove(path);
    }
    const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
    std::vector<std::shared_ptr<Notification::DeleteObserver>> observers;
    for (const QString &path : paths) {
        const QString local = localPath(path);
        if (provider && !local.isEmpty())
            observers.push_back(provider->startDeleteAttribute(local, DeletePoint::Done));
    }
    WaitForAll(observers);
}

void RemoteSubtreeMirror::createMirrors(const Entries &values)
{
    {
        const QMutexLocker locker(&mutex);
        for (auto item = values.cbegin(); item != values.cend(); ++item)
            cache.insert(item.key(), item.value());
    }
    const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
    std::vector<std::shared_ptr<Notification::CreateObserver>> observers;
    for (auto item = values.cbegin(); item != values.cend(); ++item) {
        const QString local = localPath(item.key());
        if (!provider || local.isEmpty())
            break;
        const Details details = makeDetails(item.key(), item.value().value);
        observers.push_back(provider->startCreateAttribute(local, details.value,
                                                           std::make_shared<ClientAttributeMapper>(details),
                                                           CreatePoint::Done, ReadWrite));
    }
    WaitForAll(observers);
}

void RemoteSubtreeMirror::receiveValue(const RemoteMessage &message)
{
    // Most answers tell what is known, in the very bytes.
    if (!isNews(message.path, message.data))
        return;
    const RemoteValue received = FromPeer(message.data);
    {
        const QMutexLocker locker(&mutex);
        if (cachedBytesLocked(message.path) == received.bytes)
            return;
        cache.insert(message.path, received);
    }
    FrameworkLog().log() << "RemoteBackendClient::onTextMessageReceived() path=" << message.path
                         << " data=" << received.value.toString();
    apply(message.path, received);
}

void RemoteSubtreeMirror::receiveRewrite(const QString &path)
{
    RemoteValue cached;
    {
        const QMutexLocker locker(&mutex);
        cached = cache.value(path);
    }
    apply(path, cached);
}

void RemoteSubtreeMirror::apply(const QString &path, const RemoteValue &value)
{
    updates->waitForAtMost(MaximumPending);
    updates->add(path, localPath(path), value);
}

void RemoteSubtreeMirror::receiveCreate(const RemoteMessage &message)
{
    const RemoteValue received = FromPeer(message.data);
    updates->waitForAtMost(0);
    {
        const QMutexLocker locker(&mutex);
        cache.insert(message.path, received);
    }
    const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
    const QString local = localPath(message.path);
    // The next frame may tell of the same attribute, so it has to stand by then.
    if (provider && !local.isEmpty())
        provider->createAttribute(local, received.value, CreatePoint::Done, ReadWrite);
}

} // namespace Tessellum::AppConfig::Backends::utils
