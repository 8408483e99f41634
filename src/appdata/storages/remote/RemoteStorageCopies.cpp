#include <appdata/storages/remote/RemoteStorageCopies.h>
#include <appdata/storages/Storage.h>

#include <QSet>

namespace Tessellum::AppData::Storages::utils {

namespace {

/*! Less than the node of an entry or element takes, and less than its document in a frame, so that all that
 * a frame of so many bytes can tell has room. */
constexpr qint64 CopyOverhead = 256;

qint64 costOf(const QString &text)
{
    return text.size() * qint64(sizeof(QChar));
}

} // namespace

RemoteStorageCopies::RemoteStorageCopies(RemoteStorageNode &ownNode, qint64 mostBytes)
    : node(ownNode)
    , most(mostBytes)
{ }

qint64 RemoteStorageCopies::CostOf(const QString &remote, const RemoteStorageNode::EntryRecord &record)
{
    return CopyOverhead + costOf(remote) + costOf(record.name) + costOf(record.classification)
        + costOf(record.category.getDetail());
}

qint64 RemoteStorageCopies::CostOf(const QString &remote, const RemoteStorageNode::ElementValues &values)
{
    QByteArray raw;
    values.getRawData(raw);
    return CopyOverhead + costOf(remote) + raw.size();
}

bool RemoteStorageCopies::put(const QString &remote, const QString &local, qint64 cost)
{
    drop(node.mapPath(remote));
    drop(local);
    if (!hasRoom(cost))
        return false;
    copies.insert(local, {remote, cost});
    bytes += cost;
    node.setMapping(remote, local);
    return true;
}

bool RemoteStorageCopies::change(const QString &local, const RemoteStorageNode::ElementValues &values)
{
    const auto copy = copies.find(local);
    if (copy == copies.end())
        return true; // none of the peer's
    const qint64 more = CostOf(copy->remote, values) - copy->cost;
    if (more > 0 && !hasRoom(more))
        return false;
    copy->cost += more;
    bytes += more;
    return true;
}

void RemoteStorageCopies::drop(const QString &local)
{
    const auto copy = copies.constFind(local);
    if (copy == copies.cend())
        return;
    bytes -= copy->cost;
    node.removeMapping(copy->remote);
    copies.erase(copy);
}

void RemoteStorageCopies::forgetGone(const std::shared_ptr<Storage> &storage)
{
    QSet<QString> living;
    if (storage) {
        const auto entries = storage->getChildren(false);
        for (const auto &entry : entries) {
            living.insert(entry->getId());
            const auto elements = entry->getChildren(false);
            for (const auto &element : elements)
                living.insert(element->getId());
        }
    }
    const auto known = copies.keys();
    for (const QString &local : known) {
        if (!living.contains(local))
            drop(local);
    }
}

} // namespace Tessellum::AppData::Storages::utils
