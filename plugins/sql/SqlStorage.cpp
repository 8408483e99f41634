#include "ConnectedStorages.h"
#include "SqlStorage.h"

#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>
#include <QSet>

#include <vector>

namespace Tessellum::Plugins::Sql {

using AppData::CategoryType;
using AppData::DataElementUpdateType;
using AppData::LoadDataHint;
using AppData::PersistenceType;
using AppData::Data::Entries::EntryCategory;
using Shared::Logging::FrameworkLog;

namespace {

constexpr qint32 SynchronousMode = 1;

const QString &EntryColumns()
{
    static const QString columns = QStringLiteral("SELECT uuid, name, classification, category_type, "
                                                  "category_detail, storage_name, persistence, capacity "
                                                  "FROM tessellum_entries");
    return columns;
}

EntryRecord ReadRecord(const QSqlQuery &query)
{
    return EntryRecord(query.value(1).toString(), query.value(2).toString(),
                       EntryCategory(CategoryType(query.value(3).toUInt()), query.value(4).toString()),
                       query.value(5).toString(), PersistenceType(query.value(6).toUInt()),
                       quint64(query.value(7).toLongLong()));
}

// What the medium keeps of the values.
ElementFields ToFields(const AppData::Data::Elements::ElementUpdateData &values)
{
    ElementFields fields;
    bool active = false;
    quint64 stamp = 0;
    QByteArray raw;
    if (values.getActive(active))
        fields.active = active;
    if (values.getTimestamp(stamp))
        fields.stamp = stamp;
    if (values.getRawData(raw))
        fields.raw = raw.isNull() ? QByteArray("") : raw;
    return fields;
}

QueuePolicy MakePolicy(const AppData::Storages::StorageCreateData &data, const SqlDialect &dialect)
{
    QueuePolicy policy;
    policy.limit = dialect.queueLimit(data.location);
    policy.collectsInOutage = dialect.collectsInOutage();
    policy.synchronous = data.mode == SynchronousMode;
    return policy;
}

} // namespace

SqlStorage::SqlStorage(const StorageCreateData &data, const QStringList &typeKeys,
                       std::unique_ptr<const SqlDialect> sqlDialect)
    : StorageImplementation(data)
    , keys(typeKeys)
    , dialect(std::move(sqlDialect))
    , queue(MakePolicy(data, *dialect))
    , writer({*dialect, data.location, data.name, data.mode == SynchronousMode}, queue, known, ahead)
    , reader(*dialect, data.location, data.name)
{ }

SqlStorage::~SqlStorage()
{
    // In this order: until the threads have ended, the end of the process has to wait for them here, too.
    disconnectStorage();
    ConnectedStorages::Remove(this);
}

bool SqlStorage::connectStorage()
{
    if (!ConnectedStorages::Add(this))
        return false;
    const QMutexLocker lock(&lifecycle);
    if (connected)
        return true;
    QString text = writer.start();
    if (text.isEmpty()) {
        text = reader.start();
        if (!text.isEmpty()) {
            queue.close();
            writer.join();
        }
    }
    if (!text.isEmpty()) {
        FrameworkLog().warning() << "SqlStorage::connectStorage() cannot open '"
                                 << dialect->describe(getCreateData().location) << "': " << text;
        return false;
    }
    connected = true;
    return true;
}

bool SqlStorage::disconnectStorage()
{
    const QMutexLocker lock(&lifecycle);
    if (!connected)
        return true;
    connected = false;
    queue.close();
    writer.join();
    reader.stop();
    known.clear();
    ahead.clear();
    const quint64 left = queue.size();
    if (left == 0)
        return true;
    FrameworkLog().warning() << "SqlStorage::disconnectStorage() storage '" << getCreateData().name
                             << "' keeps " << left << " writes that its medium did not take";
    return false;
}

bool SqlStorage::serializeEntry(const QString &uuid, const EntryRecord &record)
{
    Write write;
    write.kind = Write::Kind::PutEntry;
    write.entry = uuid;
    write.record = std::make_shared<const EntryRecord>(record);
    return checkConnection() && put(std::move(write));
}

bool SqlStorage::serializeElement(const QString &entryUuid, const QString &elementUuid,
                                  const ElementValues &values)
{
    if (!checkConnection() || !hasEntry(entryUuid))
        return false;
    Write write;
    write.kind = Write::Kind::PutElement;
    write.entry = entryUuid;
    write.element = elementUuid;
    write.fields = ToFields(values);
    return put(std::move(write));
}

quint64 SqlStorage::getEntries(QHash<QString, EntryRecord> &entries) const
{
    entries.clear();
    if (!checkConnection())
        return 0;
    const auto changed = queue.changedEntries();
    QHash<QString, EntryRecord> found;
    const bool works = reader.read([&found](SqlConnection &connection) {
        found.clear();
        QSqlQuery *query = connection.run(EntryColumns());
        while (query && query->next())
            found.insert(query->value(0).toString(), ReadRecord(*query));
        return connection.finish(query);
    });
    if (!works)
        return 0;
    for (auto entry = changed.cbegin(); entry != changed.cend(); ++entry) {
        if (entry->record)
            found.insert(entry.key(), *entry->record);
        else if (entry->removed)
            found.remove(entry.key());
    }
    entries = found;
    return quint64(entries.size());
}

bool SqlStorage::deserializeEntry(const QString &uuid, EntryRecord &record) const
{
    if (!checkConnection())
        return false;
    const PendingWrites::EntryView pending = queue.entry(uuid);
    if (pending.record) {
        record = *pending.record;
        return true;
    }
    std::optional<EntryRecord> found;
    if (pending.removed || !dialect->canKeep(uuid) || !reader.read([&](SqlConnection &connection) {
            QSqlQuery *query = connection.run(EntryColumns() + QStringLiteral(" WHERE uuid = ?"), {uuid});
            if (query && query->next())
                found = ReadRecord(*query);
            return connection.finish(query);
        })
        || !found)
        return false;
    record = *found;
    return true;
}

quint64 SqlStorage::getElementIds(const QString &entryUuid, QStringList &uuids) const
{
    uuids.clear();
    if (!checkConnection() || !dialect->canKeep(entryUuid))
        return 0;
    // First what is queued: what is committed meanwhile is in both.
    const PendingWrites::EntryView pending = queue.entry(entryUuid);
    const QStringList created = queue.createdElements(entryUuid);
    QStringList found;
    if (!pending.removed) {
        const bool works = reader.read(
            [&](SqlConnection &connection) { return dialect->readIds(connection, known, entryUuid, found); });
        if (!works)
            return 0;
    }
    if (!created.isEmpty()) {
        const QSet<QString> onMedium(found.cbegin(), found.cend());
        for (const QString &uuid : created) {
            if (!onMedium.contains(uuid))
                found.append(uuid);
        }
    }
    uuids = found;
    return quint64(uuids.size());
}

bool SqlStorage::deserializeElement(const QString &entryUuid, const QString &elementUuid,
                                    ElementValues &values, const LoadDataHint &hint) const
{
    const bool withRaw = hint == LoadDataHint::LoadAtOnce;
    ElementFields fields;
    if (!checkConnection() || !readElement(entryUuid, elementUuid, withRaw, fields))
        return false;
    if (fields.active)
        values.setActive(*fields.active);
    if (fields.stamp)
        values.setTimestamp(*fields.stamp);
    if (withRaw && fields.raw)
        values.setRawData(*fields.raw);
    return true;
}

QByteArray SqlStorage::getElementRawData(const QString &entryUuid, const QString &elementUuid) const
{
    ElementFields fields;
    if (!checkConnection() || !readElement(entryUuid, elementUuid, true, fields))
        return QByteArray();
    return fields.raw.value_or(QByteArray());
}

bool SqlStorage::removeEntry(const QString &uuid)
{
    if (!checkConnection() || !hasEntry(uuid))
        return false;
    Write write;
    write.kind = Write::Kind::RemoveEntry;
    write.entry = uuid;
    return put(std::move(write));
}

bool SqlStorage::updateElement(const QString &entryUuid, const QString &elementUuid,
                               const ElementValues &values)
{
    if (values.isEmpty())
        return true;
    if (!checkConnection() || !hasElement(entryUuid, elementUuid))
        return false;
    Write write;
    write.kind = Write::Kind::UpdateElement;
    write.entry = entryUuid;
    write.element = elementUuid;
    write.fields = ToFields(values);
    const bool changes = write.fields.active || write.fields.stamp || write.fields.raw;
    return !changes || put(std::move(write));
}

bool SqlStorage::updateElementValue(const QString &entryUuid, const QString &elementUuid,
                                    const DataElementUpdateType &type, const QVariant &value)
{
    ElementValues values;
    values.insert(type, value);
    return updateElement(entryUuid, elementUuid, values);
}

bool SqlStorage::checkConnection() const
{
    if (connected)
        return true;
    FrameworkLog().warning() << "SqlStorage::checkConnection() storage '" << getCreateData().name
                             << "' is not connected";
    return false;
}

bool SqlStorage::put(Write write)
{
    QString reason;
    if (!dialect->canKeepTexts(write))
        reason = QStringLiteral("a text holds characters that the engine cannot keep");
    else if (queue.put(std::move(write), reason) == WriteQueue::Result::Taken)
        return true;
    if (!reason.isEmpty()) {
        FrameworkLog().warning() << "SqlStorage::put() storage '" << getCreateData().name
                                 << "' refuses writes: " << reason;
    }
    return false;
}

bool SqlStorage::hasEntry(const QString &uuid) const
{
    const PendingWrites::EntryView pending = queue.entry(uuid);
    if (pending.record || pending.removed)
        return bool(pending.record);
    if (known.entry(uuid))
        return true;
    if (!dialect->canKeep(uuid))
        return false;
    const quint64 incarnation = known.incarnation();
    qint64 id = -1;
    const bool works = reader.read([&](SqlConnection &connection) {
        id = SqlDialect::findEntry(connection, uuid);
        return !connection.lastError();
    });
    if (!works || id == -1)
        return false;
    known.addEntry(uuid, id, incarnation, false);
    return true;
}

bool SqlStorage::hasElement(const QString &entryUuid, const QString &elementUuid) const
{
    const PendingWrites::ElementView pending = queue.element(entryUuid, elementUuid);
    if (pending.whole || pending.entryRemoved)
        return pending.whole;
    if (known.element(entryUuid, elementUuid))
        return true;
    if (!dialect->canKeep(entryUuid) || !dialect->canKeep(elementUuid))
        return false;
    bool found = false;
    return reader.read([&](SqlConnection &connection) {
        return dialect->findElement(connection, known, entryUuid, elementUuid, found);
    }) && found;
}

bool SqlStorage::readElement(const QString &entryUuid, const QString &elementUuid, bool withRaw,
                             ElementFields &fields) const
{
    const PendingWrites::ElementView pending = queue.element(entryUuid, elementUuid);
    if (!pending.whole) {
        if (pending.entryRemoved || !dialect->canKeep(entryUuid) || !dialect->canKeep(elementUuid))
            return false;
        const std::optional<ElementRow> row = readRow(entryUuid, elementUuid, withRaw);
        if (!row)
            return false;
        fields = row->fields;
    }
    fields.merge(pending.fields);
    return true;
}

std::optional<ElementRow> SqlStorage::readRow(const QString &entryUuid, const QString &elementUuid,
                                              bool withRaw) const
{
    std::optional<ElementRow> row = ahead.find(entryUuid, elementUuid, withRaw);
    if (row)
        return row;
    const int span = ahead.span(entryUuid);
    const quint64 generation = ahead.generation(entryUuid);
    std::vector<ElementRow> rows;
    const bool works = reader.read([&](SqlConnection &connection) {
        rows.clear();
        return dialect->readElements(connection, known, entryUuid, elementUuid, span, withRaw, rows);
    });
    if (!works || rows.empty())
        return std::nullopt;
    ahead.store(entryUuid, generation, rows);
    return rows.front();
}

} // namespace Tessellum::Plugins::Sql
