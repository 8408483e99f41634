#include <appdata/storages/remote/RemoteStorageNode.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/UrlLimit.h>
#include <shared/hierarchy/HierarchyNode.h>
#include <shared/hierarchy/HierarchyStringPath.h>

#include <QMutexLocker>
#include <QTimer>
#include <QUrlQuery>

namespace Tessellum::AppData::Storages::utils {

using Shared::Hierarchy::HierarchyNode;
using Shared::Hierarchy::HierarchyStringPath;

namespace {

constexpr int MostLooks = 200;
constexpr int LookPause = 5; // milliseconds

RemoteStorageMessage MakeMessage(const QString &path, RemoteStorageCommand command, const QVariant &data,
                                 const QVariantHash &options)
{
    RemoteStorageMessage message;
    message.command = WordOfCommand(command);
    message.path = path;
    message.data = data;
    message.options = options;
    return message;
}

} // namespace

RemoteStorageNode::RemoteStorageNode(const QString &nodeId, const QUrl &nodeUrl)
    : id(nodeId)
    , location(nodeUrl)
{ }

RemoteStorageNode::~RemoteStorageNode() = default;

void RemoteStorageNode::storeEntry(const QString &path, const EntryRecord &info)
{
    const QMutexLocker locker(&mutex);
    entries[path].info = info;
}

bool RemoteStorageNode::readEntry(const QString &path, EntryRecord &info) const
{
    const QMutexLocker locker(&mutex);
    const auto entry = entries.constFind(path);
    if (entry == entries.cend())
        return false;
    info = entry->info;
    return true;
}

bool RemoteStorageNode::storeElement(const QString &path, const QString &name, const ElementValues &values)
{
    ElementValues stored = values;
    stored.setInfo(nullptr); // of the element in the tree, which the cache must not keep alive
    stored.remove(DataElementUpdateType::ParsedData);
    const QMutexLocker locker(&mutex);
    const auto entry = entries.find(path);
    if (entry == entries.end())
        return false;
    if (!entry->elements.contains(name))
        entry->order.append(name);
    entry->elements.insert(name, stored);
    return true;
}

bool RemoteStorageNode::changeElement(const QString &path, const QString &name, const ElementValues &values)
{
    const QMutexLocker locker(&mutex);
    const auto entry = entries.find(path);
    if (entry == entries.end())
        return false;
    const auto stored = entry->elements.find(name);
    if (stored == entry->elements.end())
        return false;
    for (const DataElementUpdateType &type : values.getUpdateTypes()) {
        if (type != DataElementUpdateType::ParsedData)
            stored->insert(type, values.value(type));
    }
    return true;
}

std::optional<RemoteStorageNode::ElementValues> RemoteStorageNode::readElement(const QString &path,
                                                                               const QString &name) const
{
    const QMutexLocker locker(&mutex);
    const auto entry = entries.constFind(path);
    if (entry == entries.cend())
        return std::nullopt;
    const auto element = entry->elements.constFind(name);
    if (element == entry->elements.cend())
        return std::nullopt;
    return *element;
}

QHash<QString, RemoteStorageNode::ElementValues> RemoteStorageNode::readElements(const QString &path) const
{
    const QMutexLocker locker(&mutex);
    const auto entry = entries.constFind(path);
    return entry == entries.cend() ? QHash<QString, ElementValues>() : entry->elements;
}

QStringList RemoteStorageNode::readElementNames(const QString &path) const
{
    const QMutexLocker locker(&mutex);
    const auto entry = entries.constFind(path);
    return entry == entries.cend() ? QStringList() : entry->order;
}

QHash<QString, RemoteStorageNode::EntryRecord> RemoteStorageNode::readEntries() const
{
    QHash<QString, EntryRecord> records;
    const QMutexLocker locker(&mutex);
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
        records.insert(entry.key(), entry->info);
    return records;
}

bool RemoteStorageNode::dropEntry(const QString &path)
{
    const QMutexLocker locker(&mutex);
    return entries.remove(path) > 0;
}

void RemoteStorageNode::clearEntries()
{
    const QMutexLocker locker(&mutex);
    entries.clear();
}

QString RemoteStorageNode::mapPath(const QString &remote) const
{
    const QMutexLocker locker(&mutex);
    return map.value(remote);
}

void RemoteStorageNode::setMapping(const QString &remote, const QString &local)
{
    const QMutexLocker locker(&mutex);
    map.insert(remote, local);
}

QHash<QString, QString> RemoteStorageNode::getMap() const
{
    const QMutexLocker locker(&mutex);
    return map;
}

void RemoteStorageNode::replaceMap(const QHash<QString, QString> &newMap)
{
    const QMutexLocker locker(&mutex);
    map = newMap;
}

void RemoteStorageNode::removeMapping(const QString &remote)
{
    const QMutexLocker locker(&mutex);
    map.remove(remote);
}

void RemoteStorageNode::clear()
{
    const QMutexLocker locker(&mutex);
    entries.clear();
    map.clear();
}

QString RemoteStorageNode::ComposeText(const QString &path, RemoteStorageCommand command,
                                       const QVariant &data, const QVariantHash &options)
{
    return ComposeRemoteStorageText(MakeMessage(path, command, data, options));
}

QByteArray RemoteStorageNode::ComposeBinary(const QString &path, RemoteStorageCommand command,
                                            const QVariant &data, const QVariantHash &options)
{
    return ComposeRemoteStorageBinary(MakeMessage(path, command, data, options));
}

QString RemoteStorageNode::JoinPath(const QString &first, const QString &second)
{
    return HierarchyStringPath::JoinPath({first, second}, HierarchyNode::GetHierarchyNodePathSeparator());
}

QStringList RemoteStorageNode::SplitPath(const QString &path)
{
    return HierarchyStringPath::SplitPath(path, HierarchyNode::GetHierarchyNodePathSeparator());
}

bool RemoteStorageNode::IsPathElement(const QString &id)
{
    return !id.isEmpty() && !id.contains(HierarchyNode::GetHierarchyNodePathSeparator());
}

QString RemoteStorageNode::getQueryItem(const QString &key) const
{
    return QUrlQuery(location).queryItemValue(key, QUrl::FullyDecoded);
}

qint64 RemoteStorageNode::getLimit(qint64 preset) const
{
    return Notification::utils::ReadUrlLimit(location, preset).value_or(preset);
}

bool RemoteStorageNode::isStorageEntered(const QString &storageName, const std::function<void()> &again)
{
    if (looksForStorage >= MostLooks)
        return true;
    // A storage that an application connects by itself has no place in the tree.
    looksForStorage = AppData::utils::FindStorage(storageName) ? MostLooks : looksForStorage + 1;
    if (looksForStorage >= MostLooks)
        return true;
    QTimer::singleShot(LookPause, this, again);
    return false;
}

std::shared_ptr<Notification::utils::FrameWorker> RemoteStorageNode::getWorker()
{
    // The node of an application's own storage outlives a run of the repository.
    if (!worker || worker->hasEnded())
        worker = AppData::utils::RepositoryProvider::getInstance()->getFrameWorkers().make();
    return worker;
}

} // namespace Tessellum::AppData::Storages::utils
