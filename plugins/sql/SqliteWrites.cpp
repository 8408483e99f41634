#include "KnownElements.h"
#include "SqliteDialect.h"

#include <QVarLengthArray>

#include <array>

namespace Tessellum::Plugins::Sql {

namespace {

QVariant ActiveValue(const ElementFields &fields)
{
    return fields.active ? QVariant(int(*fields.active)) : QVariant(QVariant::Int);
}

QVariant StampValue(const ElementFields &fields)
{
    return fields.stamp ? QVariant(SqlDialect::toColumn(*fields.stamp)) : QVariant(QVariant::LongLong);
}

QVariant RawValue(const ElementFields &fields)
{
    return fields.raw ? QVariant(*fields.raw) : QVariant(QVariant::ByteArray);
}

const QString &UpdateStatement(bool active, bool stamp, bool raw)
{
    static const std::array<QString, 8> statements = [] {
        std::array<QString, 8> made;
        for (size_t mask = 1; mask < made.size(); ++mask) {
            QStringList columns;
            if (mask & 1)
                columns.append(QStringLiteral("active = ?"));
            if (mask & 2)
                columns.append(QStringLiteral("stamp = ?"));
            if (mask & 4)
                columns.append(QStringLiteral("raw = ?"));
            made[mask] = QStringLiteral("UPDATE tessellum_elements SET %1 WHERE id = ?")
                             .arg(columns.join(QStringLiteral(", ")));
        }
        return made;
    }();
    return statements[(active ? 1 : 0) + (stamp ? 2 : 0) + (raw ? 4 : 0)];
}

/*! Makes writes one after the other. */
class SqliteWrites
{
public:
    SqliteWrites(SqlConnection &sqlConnection, KnownElements &knownElements)
        : connection(sqlConnection)
        , known(knownElements)
    { }

    // False for a failure; \a found: whether the write met its entry or element.
    bool make(const Write &write, bool &found)
    {
        switch (write.kind) {
        case Write::Kind::PutEntry:
            return putEntry(write);
        case Write::Kind::RemoveEntry:
            return removeEntry(write, found);
        case Write::Kind::PutElement:
            return putElement(write, found);
        case Write::Kind::UpdateElement:
            return updateElement(write, found);
        }
        return true;
    }

private:
    bool findEntry(const QString &uuid, qint64 &id)
    {
        const std::optional<qint64> knownId = known.entry(uuid);
        if (knownId) {
            id = *knownId;
            return true;
        }
        const QVariant found
            = connection.value(QStringLiteral("SELECT id FROM tessellum_entries WHERE uuid = ?"), {uuid});
        id = found.isValid() ? found.toLongLong() : -1;
        return !connection.lastError();
    }

    bool putEntry(const Write &write)
    {
        qint64 before = -1;
        if (!findEntry(write.entry, before) || !SqlDialect::putEntry(connection, write))
            return false;
        qint64 id = before;
        if (before == -1 && !findEntry(write.entry, id))
            return false;
        known.addEntry(write.entry, id, known.incarnation(), before == -1);
        return true;
    }

    bool removeEntry(const Write &write, bool &found)
    {
        qint64 id = -1;
        if (!findEntry(write.entry, id))
            return false;
        found = id != -1;
        known.forget(write.entry);
        return connection.run(QStringLiteral("DELETE FROM tessellum_elements WHERE entry = ?"), {id})
            && connection.run(QStringLiteral("DELETE FROM tessellum_entries WHERE id = ?"), {id});
    }

    bool putElement(const Write &write, bool &found)
    {
        if (nextRow == 0 && !findNextRow())
            return false;
        KnownElements::Place place = known.findOrAdd(write.entry, write.element, nextRow);
        if (!place.row) {
            qint64 entryId = -1;
            qint64 row = -1;
            if (!SqliteDialect::Locate(connection, known, write.entry, write.element, entryId, row))
                return false;
            found = entryId != -1;
            if (!found)
                return true;
            place = known.findOrAdd(write.entry, write.element, nextRow);
            if (!place.row)
                return connection.fail(QStringLiteral("the entry changed while it was read"));
        }
        const ElementFields &fields = write.fields;
        if (*place.row != nextRow) {
            return connection.run(UpdateStatement(true, true, true),
                                  {ActiveValue(fields), StampValue(fields), RawValue(fields), *place.row});
        }
        static const QString insert = QStringLiteral(
            "INSERT INTO tessellum_elements (id, entry, uuid, active, stamp, raw) VALUES (?, ?, ?, ?, ?, ?)");
        return connection.run(insert,
                              {nextRow++, *place.entry, write.element, ActiveValue(fields),
                               StampValue(fields), RawValue(fields)});
    }

    // The transaction is the only one that writes. An own number is known before the row is made, and costs
    // no question afterwards.
    bool findNextRow()
    {
        const QVariant last = connection.value(QStringLiteral("SELECT max(id) FROM tessellum_elements"));
        nextRow = last.toLongLong() + 1;
        return !connection.lastError();
    }

    bool updateElement(const Write &write, bool &found)
    {
        qint64 entryId = -1;
        qint64 row = -1;
        if (!SqliteDialect::Locate(connection, known, write.entry, write.element, entryId, row))
            return false;
        found = row != -1;
        if (!found)
            return true;
        // Columns that do not change are left alone, and with them the index by stamp.
        const ElementFields &fields = write.fields;
        QVarLengthArray<QVariant, 4> values;
        if (fields.active)
            values.append(ActiveValue(fields));
        if (fields.stamp)
            values.append(StampValue(fields));
        if (fields.raw)
            values.append(RawValue(fields));
        if (values.isEmpty())
            return true;
        values.append(row);
        return connection.run(UpdateStatement(bool(fields.active), bool(fields.stamp), bool(fields.raw)),
                              values.constData(), values.size());
    }

    SqlConnection &connection;
    KnownElements &known;
    qint64 nextRow = 0; // 0: not asked for yet
};

} // namespace

bool SqliteDialect::write(SqlConnection &connection, KnownElements &known, const Write *first,
                          const Write *last, int &missed) const
{
    SqliteWrites writes(connection, known);
    for (const Write *next = first; next != last; ++next) {
        bool found = true;
        if (!writes.make(*next, found))
            return false;
        if (!found)
            ++missed;
    }
    return true;
}

// Rows became known as they were made.
void SqliteDialect::rolledBack(KnownElements &known, const Write *first, const Write *last) const
{
    known.forget(first, last);
}

} // namespace Tessellum::Plugins::Sql
