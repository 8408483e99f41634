#pragma once

#include <appdata/data/entries/Entry.h>
#include <appdata/storages/remote/RemoteStorageCopies.h>
#include <appdata/storages/remote/RemoteStorageNode.h>
#include <notification/Observer.h>

#include <QSet>

#include <memory>
#include <utility>
#include <vector>

namespace Tessellum::AppData::Storages {
class Storage;
}

namespace Tessellum::AppData::Data::Elements {
class Element;
}

namespace Tessellum::AppData::Storages::utils {

/*!
 * Repeats in one storage of this process what the messages of a peer tell of entries and elements. It knows
 * no network.
 *
 * New elements of an entry that come together are created by one task, in their order, and updates of
 * different elements are on their way together; what concerns one element keeps its order. So take() returns
 * before everything is done, and flush() does the rest and waits for it.
 *
 * The map of the node leads from the peer's uuids to those here. What it leads to and what is alive is
 * changed and never created a second time. Nothing outside the storage is touched, whatever a peer sends,
 * and what has no room is dropped, with a line for the first of it.
 *
 * Threads: one at a time, never the event thread: it waits for tasks. Those end with the repository's stop,
 * after which messages are dropped.
 */
class RemoteStorageMirror
{
public:
    /*! \a node outlives the mirror; new entries go into the storage \a nameOfStorage. \a mostBytes bounds
     * what the peers may have kept there. */
    RemoteStorageMirror(RemoteStorageNode &node, const QString &nameOfStorage, qint64 mostBytes);
    ~RemoteStorageMirror();
    Q_DISABLE_COPY_MOVE(RemoteStorageMirror)

    /*! Does what \a message says, whose payload is encoded in \a mode; an invalid one is dropped. */
    void take(const RemoteStorageMessage &message, RemoteStorageMode mode);
    /*! Waits until all that was taken is done. */
    void flush();

private:
    using EntryPtr = std::shared_ptr<Data::Entries::Entry>;
    using ElementPtr = std::shared_ptr<Data::Elements::Element>;
    using EntryRecord = RemoteStorageNode::EntryRecord;
    using ElementValues = RemoteStorageNode::ElementValues;

    /*! New elements of one entry, by the peer's uuids. */
    struct Batch
    {
        EntryPtr entry;
        std::vector<std::pair<QString, ElementValues>> elements;
    };

    void takeContents(const RemoteStorageMessage &message, RemoteStorageMode mode);
    void takeElement(const QStringList &path, const ElementValues &values, bool mayCreate);
    EntryPtr putEntry(const QString &remote, EntryRecord record);
    void deleteEntry(const QString &remote);
    void forgetGoneCopies();
    bool makeRoom(qint64 cost);
    void tellOfBound();

    std::shared_ptr<Storage> storage();
    EntryPtr findEntry(const QString &remote);
    ElementPtr findElement(const EntryPtr &entry, const QString &remote);

    void addElement(const EntryPtr &entry, const QString &remote, ElementValues values);
    void takeElementOfContents(const EntryPtr &entry, const QString &remote, ElementValues values);
    void changeElement(const EntryPtr &entry, const ElementPtr &element, ElementValues values);
    void complete(const EntryPtr &entry, const ElementPtr &element, ElementValues &values) const;
    void flushCreates();
    void flushUpdates();
    void createEach(const Batch &batch);
    void dropFailed(const Batch &batch);

    RemoteStorageNode &node;
    const QString storageName;
    std::weak_ptr<Storage> knownStorage;
    RemoteStorageCopies copies;
    int copiesToLook = 0; // with more of them it is time to look which are gone
    bool toldOfBound = false; // since the last contents

    QHash<QString, Batch> batches; // by the entries' uuids here
    std::size_t creates = 0; // in all batches
    QSet<QString> pending; // the uuids here of elements with a create or an update on its way
    std::vector<std::shared_ptr<Notification::UpdateObserver>> updates;
};

} // namespace Tessellum::AppData::Storages::utils
