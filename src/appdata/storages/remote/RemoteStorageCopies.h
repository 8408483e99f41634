#pragma once

#include <appdata/storages/remote/RemoteStorageNode.h>

#include <QHash>
#include <QString>

#include <memory>

namespace Tessellum::AppData::Storages {
class Storage;
}

namespace Tessellum::AppData::Storages::utils {

/*!
 * The copies that a storage of this process has of what a peer told it, by their uuids here. It keeps the
 * node's map, in which each copy stands under one name of the peer's, and counts what the copies take, so
 * that no peer fills the memory.
 *
 * Threads: one at a time.
 */
class RemoteStorageCopies
{
public:
    /*! \a mostBytes: what all copies may take. \a ownNode outlives this. */
    RemoteStorageCopies(RemoteStorageNode &ownNode, qint64 mostBytes);

    /*! What a copy takes; \a remote is its name at the peer. */
    static qint64 CostOf(const QString &remote, const RemoteStorageNode::EntryRecord &record);
    static qint64 CostOf(const QString &remote, const RemoteStorageNode::ElementValues &values);

    bool hasRoom(qint64 cost) const { return bytes + cost <= most; }
    /*! Enters a copy, in the place of another one with either name. False, and nothing is kept, without
     * room. */
    bool put(const QString &remote, const QString &local, qint64 cost);
    /*! The values of a copy have changed. False without room; less always has it. */
    bool change(const QString &local, const RemoteStorageNode::ElementValues &values);
    void drop(const QString &local);
    /*! Drops what is not in the tree beneath \a storage. */
    void forgetGone(const std::shared_ptr<Storage> &storage);
    int size() const { return copies.size(); }

private:
    struct Copy
    {
        QString remote;
        qint64 cost = 0;
    };

    RemoteStorageNode &node;
    const qint64 most;
    qint64 bytes = 0; // of all copies
    QHash<QString, Copy> copies;
};

} // namespace Tessellum::AppData::Storages::utils
