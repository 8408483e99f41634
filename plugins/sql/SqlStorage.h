#pragma once

#include "KnownElements.h"
#include "ReadAhead.h"
#include "SqlDialect.h"
#include "SqlReader.h"
#include "SqlWriter.h"
#include "WriteQueue.h"

#include <appdata/storages/StorageImplementation.h>

#include <QMutex>

#include <atomic>
#include <memory>

namespace Tessellum::Plugins::Sql {

/*!
 * A storage in a database that Qt SQL reaches.
 *
 * Writes go into a queue, from which one thread commits them in groups; with mode 1 each call waits for its
 * commit. One other thread reads. What is queued lies over what the medium holds, so that readers see it. A
 * queued write is first looked at, then the medium: what is committed in between is seen in either case.
 *
 * Lock: lifecycle makes connect and disconnect one step each; the members lock themselves. It is held while
 * the queue is written at a disconnect.
 */
class SqlStorage : public AppData::Storages::StorageImplementation
{
public:
    using StorageCreateData = AppData::Storages::StorageCreateData;

    SqlStorage(const StorageCreateData &data, const QStringList &typeKeys,
               std::unique_ptr<const SqlDialect> sqlDialect);
    /*! Disconnects. */
    ~SqlStorage() override;

    QStringList getEntryTypes() const override { return keys; }
    bool connectStorage() override;
    bool disconnectStorage() override;
    bool isConnected() const override { return connected; }
    bool serializeEntry(const QString &uuid, const EntryRecord &record) override;
    bool serializeElement(const QString &entryUuid, const QString &elementUuid,
                          const ElementValues &values) override;
    quint64 getEntries(QHash<QString, EntryRecord> &entries) const override;
    bool deserializeEntry(const QString &uuid, EntryRecord &record) const override;
    quint64 getElementIds(const QString &entryUuid, QStringList &uuids) const override;
    bool deserializeElement(const QString &entryUuid, const QString &elementUuid, ElementValues &values,
                            const AppData::LoadDataHint &hint) const override;
    QByteArray getElementRawData(const QString &entryUuid, const QString &elementUuid) const override;
    bool removeEntry(const QString &uuid) override;
    bool updateElement(const QString &entryUuid, const QString &elementUuid,
                       const ElementValues &values) override;
    bool updateElementValue(const QString &entryUuid, const QString &elementUuid,
                            const AppData::DataElementUpdateType &type, const QVariant &value) override;

private:
    bool checkConnection() const;
    bool put(Write write);
    bool hasEntry(const QString &uuid) const;
    bool hasElement(const QString &entryUuid, const QString &elementUuid) const;
    bool readElement(const QString &entryUuid, const QString &elementUuid, bool withRaw,
                     ElementFields &fields) const;
    std::optional<ElementRow> readRow(const QString &entryUuid, const QString &elementUuid,
                                      bool withRaw) const;

    const QStringList keys;
    const std::unique_ptr<const SqlDialect> dialect;
    mutable KnownElements known;
    mutable ReadAhead ahead;
    WriteQueue queue;
    SqlWriter writer;
    mutable SqlReader reader;
    QMutex lifecycle;
    std::atomic<bool> connected{false};
};

} // namespace Tessellum::Plugins::Sql
