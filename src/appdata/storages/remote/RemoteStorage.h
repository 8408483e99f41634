#pragma once

#include <appdata/storages/StorageImplementation.h>

#include <QMutex>

#include <memory>

namespace Tessellum::AppData::Storages {

namespace utils {
class RemoteStorageNode;
}

/*!
 * A storage of which other processes have a copy, or that is the copy: it keeps nothing on disk, and its
 * node's cache answers all reads. The location is the URL of a web socket; the type tells on which end of it
 * this one stands.
 *
 * The node keeps what it has until this object dies, also over a disconnect. Lock: the mutex guards the
 * pointer to the node; nothing is called while it is held.
 */
class TESSELLUM_EXPORT RemoteStorage : public StorageImplementation
{
public:
    explicit RemoteStorage(const StorageCreateData &data);
    ~RemoteStorage() override;

    QStringList getEntryTypes() const override;
    /*! Does not wait for the network. False for a location that is no valid URL, for a server without a port
     * too, and for another type. */
    bool connectStorage() override;
    /*! True; nothing is closed. */
    bool disconnectStorage() override;
    /*! Whether the server listens, or the client has its status attribute. */
    bool isConnected() const override;
    bool serializeEntry(const QString &uuid, const EntryRecord &record) override;
    bool serializeElement(const QString &entryUuid, const QString &elementUuid,
                          const ElementValues &values) override;
    quint64 getEntries(QHash<QString, EntryRecord> &entries) const override;
    bool deserializeEntry(const QString &uuid, EntryRecord &record) const override;
    quint64 getElementIds(const QString &entryUuid, QStringList &uuids) const override;
    bool deserializeElement(const QString &entryUuid, const QString &elementUuid, ElementValues &values,
                            const LoadDataHint &hint) const override;
    QByteArray getElementRawData(const QString &entryUuid, const QString &elementUuid) const override;
    bool removeEntry(const QString &uuid) override;
    bool updateElement(const QString &entryUuid, const QString &elementUuid,
                       const ElementValues &values) override;
    bool updateElementValue(const QString &entryUuid, const QString &elementUuid,
                            const DataElementUpdateType &type, const QVariant &value) override;

protected:
    using NodePtr = std::shared_ptr<utils::RemoteStorageNode>;

    /*! The end that the type asks for; null, with a line, where type or location do not allow it. */
    virtual NodePtr makeNode() const;

private:
    NodePtr getNode() const;

    mutable QMutex mutex;
    NodePtr node;
};

} // namespace Tessellum::AppData::Storages
