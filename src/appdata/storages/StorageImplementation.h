#pragma once

#include <appdata/data/elements/ElementUpdateData.h>
#include <appdata/data/entries/EntrySerializeInformation.h>
#include <appdata/storages/StorageCreateData.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QHash>
#include <QStringList>

namespace Tessellum::AppData::Storages {

/*! What a storage may tell beside its results; no numbers are defined yet. */
enum class StorageNotification : quint32 { Unknown = 0 };

/*!
 * A medium that keeps entries and elements: what a storage plug-in implements.
 *
 * The contract:
 * - Calls come from any thread at any time, also several at once and also while the medium is not connected;
 *   the implementation locks itself and holds no lock while it emits a signal or logs.
 * - It never calls back into the library from an operation, and no operation waits without an end.
 * - A failure is a false, an empty result or a count of 0, with a WARNING that names the cause; nothing
 *   throws. An outage may be told once instead of with every call that it spoils. After a failure the medium
 *   is as it was before the call, and later calls work once the cause has gone.
 * - An unknown entry or element is no failure of the medium: false, an empty result or 0, without a line.
 *   serializeElement() of an unknown entry is false, and so is an update of an unknown element.
 * - Uuids are opaque texts, raw bytes are kept as they are, time stamps use all 64 bits and sort unsigned.
 *   A key that was not given is not there when the element is read.
 * - getElementIds() lists in the order in which the elements were serialized.
 * - What an operation has returned true for is seen by every later call, from any thread, also where it is
 *   only queued for the medium. An update of several values is seen whole or not at all.
 * - A repeated serializeEntry() or serializeElement() of a known uuid replaces the record, keeps its place,
 *   and leaves the entry's elements as they are. A removed entry that comes back has no elements.
 * - Out-parameters of getEntries() and getElementIds() hold the result alone; those of deserializeEntry() and
 *   deserializeElement() are changed where the result is true.
 *
 * Ownership: shared with the storage's node; it ends on the event thread.
 */
class TESSELLUM_EXPORT StorageImplementation : public Shared::Hierarchy::HierarchyNodeInstance,
                                               public Shared::PropertyContainer<StorageCreateData>,
                                               public AppData::utils::AppDataRepositoryEventThreadUser
{
    Q_OBJECT

public:
    using EntryRecord = Data::Entries::EntrySerializeInformation;
    using ElementValues = Data::Elements::ElementUpdateData;

    explicit StorageImplementation(const StorageCreateData &createData);
    ~StorageImplementation() override;

    /*! What the storage was made from. */
    const StorageCreateData &getCreateData() const { return createData; }

    /*! The type keys to which it answers. */
    virtual QStringList getEntryTypes() const = 0;
    /*! Opens the medium; true also when it is open. */
    virtual bool connectStorage() = 0;
    /*! Writes what is queued and closes the medium; true also when it is closed. */
    virtual bool disconnectStorage() = 0;
    virtual bool isConnected() const = 0;
    /*! Creates the entry; false takes the entry off the tree again. */
    virtual bool serializeEntry(const QString &uuid, const EntryRecord &record) = 0;
    /*! Stores a new element with the keys that are there; the parsed value is not for the medium. */
    virtual bool serializeElement(const QString &entryUuid, const QString &elementUuid,
                                  const ElementValues &values)
        = 0;
    /*! All entries by uuid; returns their number. */
    virtual quint64 getEntries(QHash<QString, EntryRecord> &entries) const = 0;
    virtual bool deserializeEntry(const QString &uuid, EntryRecord &record) const = 0;
    /*! The uuids of the elements of an entry; returns their number. */
    virtual quint64 getElementIds(const QString &entryUuid, QStringList &uuids) const = 0;
    /*! Fills in active flag and time stamp, with LoadDataHint::LoadAtOnce also the raw bytes. */
    virtual bool deserializeElement(const QString &entryUuid, const QString &elementUuid,
                                    ElementValues &values, const LoadDataHint &hint) const = 0;
    /*! The raw bytes; empty where the element is unknown. */
    virtual QByteArray getElementRawData(const QString &entryUuid, const QString &elementUuid) const = 0;
    /*! Drops an entry with its elements; false where it is unknown. */
    virtual bool removeEntry(const QString &uuid) = 0;
    /*! Changes several values: calls updateElementValue() for each, in ascending order of their keys, and
     * ends at the first false. Override this or updateElementValue(). */
    virtual bool updateElement(const QString &entryUuid, const QString &elementUuid,
                               const ElementValues &values);
    /*! Changes one value. The parsed value is not for the medium: true, and nothing happens. */
    virtual bool updateElementValue(const QString &entryUuid, const QString &elementUuid,
                                    const DataElementUpdateType &type, const QVariant &value)
        = 0;

Q_SIGNALS:
    /*! Something that the medium has to tell. */
    void notificationReceived(Tessellum::AppData::Storages::StorageNotification notification,
                              const QVariant &data);

private:
    const StorageCreateData createData;
};

} // namespace Tessellum::AppData::Storages

Q_DECLARE_METATYPE(Tessellum::AppData::Storages::StorageNotification)
