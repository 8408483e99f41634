#include "SqlDialect.h"

namespace Tessellum::Plugins::Sql {

namespace {

// Longer ones are read one by one.
constexpr int ShortRaw = 4096;

} // namespace

bool SqlDialect::canKeepTexts(const Write &write) const
{
    if (!canKeep(write.entry) || !canKeep(write.element))
        return false;
    return !write.record
        || (canKeep(write.record->name) && canKeep(write.record->classification)
            && canKeep(write.record->category.getDetail()) && canKeep(write.record->storageName));
}

QString SqlDialect::elementColumns(bool withRaw, const QString &first)
{
    const QString raw = withRaw
        ? QStringLiteral("CASE WHEN t.id = %1 OR length(t.raw) <= %2 THEN t.raw END").arg(first).arg(ShortRaw)
        : QStringLiteral("NULL");
    return QStringLiteral("t.id, t.uuid, t.active, t.stamp, length(t.raw), ") + raw;
}

ElementRow SqlDialect::readRow(const QSqlQuery &query, bool withRaw)
{
    ElementRow row;
    row.id = query.value(0).toLongLong();
    row.uuid = query.value(1).toString();
    if (!query.isNull(2))
        row.fields.active = query.value(2).toInt() != 0;
    if (!query.isNull(3))
        row.fields.stamp = fromColumn(query.value(3).toLongLong());
    const bool wasGiven = !query.isNull(4);
    const qint64 length = query.value(4).toLongLong();
    if (!wasGiven) {
        row.hasRaw = true;
    } else if (withRaw) {
        QByteArray raw = query.value(5).toByteArray();
        row.hasRaw = raw.size() == length;
        if (row.hasRaw)
            row.fields.raw = raw.isNull() ? QByteArray("") : raw;
    }
    return row;
}

bool SqlDialect::putEntry(SqlConnection &connection, const Write &write)
{
    static const QString statement = QStringLiteral(
        "INSERT INTO tessellum_entries (uuid, name, classification, category_type, category_detail, "
        "storage_name, "
        "persistence, capacity) VALUES (?, ?, ?, ?, ?, ?, ?, ?) "
        "ON CONFLICT (uuid) DO UPDATE SET name = excluded.name, classification = excluded.classification, "
        "category_type = excluded.category_type, category_detail = excluded.category_detail, "
        "storage_name = excluded.storage_name, persistence = excluded.persistence, capacity = "
        "excluded.capacity");
    // A null text would become NULL.
    const auto text = [](const QString &value) { return value.isNull() ? QStringLiteral("") : value; };
    const EntryRecord &record = *write.record;
    return connection.run(statement,
                          {text(write.entry), text(record.name), text(record.classification),
                           qint64(record.category.getType()), text(record.category.getDetail()),
                           text(record.storageName), qint64(record.persistence), qint64(record.capacity)})
        != nullptr;
}

// -1 where there is none, or for a failure.
qint64 SqlDialect::findEntry(SqlConnection &connection, const QString &uuid)
{
    const QVariant id
        = connection.value(QStringLiteral("SELECT id FROM tessellum_entries WHERE uuid = ?"), {uuid});
    return id.isValid() ? id.toLongLong() : -1;
}

} // namespace Tessellum::Plugins::Sql
