#include "KnownElements.h"
#include "PostgresqlDialect.h"

#include <QHash>

namespace Tessellum::Plugins::Sql {

namespace {

// A statement is ended before it grows beyond this many characters.
constexpr int StatementSize = 8 << 20;
constexpr int RemovedAtOnce = 50000;

// The session has standard strings, in which the quote alone is special.
QString Quoted(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

/*!
 * Makes writes as multi-row statements. Puts and updates of elements are gathered by element, so that each is
 * in one row of one statement; those of different elements may change places. Whatever concerns an entry ends
 * what was gathered.
 */
class PostgresqlWrites
{
public:
    PostgresqlWrites(SqlConnection &sqlConnection, int &missedWrites)
        : connection(sqlConnection)
        , missed(missedWrites)
    { }

    bool make(const Write &write)
    {
        switch (write.kind) {
        case Write::Kind::PutEntry:
            return flush() && SqlDialect::putEntry(connection, write);
        case Write::Kind::RemoveEntry:
            return flush() && removeElements(write.entry)
                && connection.run(QStringLiteral("DELETE FROM tessellum_entries WHERE uuid = ?"),
                                  {write.entry});
        case Write::Kind::PutElement:
        case Write::Kind::UpdateElement:
            gather(write);
            return size < StatementSize || flush();
        }
        return true;
    }

    bool flush()
    {
        const bool flushed = putElements() && updateElements();
        rows.clear();
        places.clear();
        size = 0;
        return flushed;
    }

private:
    struct Row
    {
        QString entry;
        QString element;
        bool whole;
        ElementFields fields;
    };

    void gather(const Write &write)
    {
        const bool whole = write.kind == Write::Kind::PutElement;
        size += 200 + 2 * int(write.bytes());
        const auto key = qMakePair(write.entry, write.element);
        const auto place = places.constFind(key);
        if (place == places.cend()) {
            places.insert(key, int(rows.size()));
            rows.push_back({write.entry, write.element, whole, write.fields});
            return;
        }
        Row &row = rows[size_t(*place)];
        if (whole)
            row = {write.entry, write.element, true, write.fields};
        else
            row.fields.merge(write.fields);
    }

    // A part at a time, so that the server answers in time however many there are.
    bool removeElements(const QString &entry)
    {
        const QString statement
            = QStringLiteral("DELETE FROM tessellum_elements WHERE id IN (SELECT t.id FROM "
                             "tessellum_elements t JOIN tessellum_entries e ON e.id = t.entry "
                             "WHERE e.uuid = %1 LIMIT %2)")
                  .arg(Quoted(entry))
                  .arg(RemovedAtOnce);
        int affected = 0;
        do {
            affected = connection.runOnce(statement);
        } while (affected == RemovedAtOnce);
        return affected != -1;
    }

    // The rows as a table "v" of n, entry, uuid, active, stamp and raw; empty where there are none.
    QString table(bool whole, int &count) const
    {
        QString text;
        count = 0;
        for (const Row &row : rows) {
            if (row.whole != whole)
                continue;
            text += (count == 0 ? QStringLiteral("(VALUES (") : QStringLiteral(", ("))
                + QString::number(count) + QLatin1String(", ") + Quoted(row.entry) + QLatin1String(", ")
                + Quoted(row.element);
            const ElementFields &fields = row.fields;
            text
                += fields.active ? QStringLiteral(", %1").arg(int(*fields.active)) : QStringLiteral(", NULL");
            // As a text: the smallest number is none that could be written with a sign.
            text += fields.stamp ? QStringLiteral(", '%1'::bigint").arg(SqlDialect::toColumn(*fields.stamp))
                                 : QStringLiteral(", NULL");
            text += fields.raw
                ? QLatin1String(", '\\x") + QLatin1String(fields.raw->toHex()) + QLatin1String("'::bytea)")
                : QStringLiteral(", NULL)");
            ++count;
        }
        return text.isEmpty() ? text : text + QLatin1String(") v (n, entry, uuid, active, stamp, raw)");
    }

    bool putElements()
    {
        int count = 0;
        const QString values = table(true, count);
        if (values.isEmpty())
            return true;
        const int affected = connection.runOnce(
            QStringLiteral("INSERT INTO tessellum_elements (entry, uuid, active, stamp, raw) "
                           "SELECT e.id, v.uuid, v.active::smallint, v.stamp::bigint, v.raw::bytea FROM ")
            + values
            + QStringLiteral(" JOIN tessellum_entries e ON e.uuid = v.entry ORDER BY v.n "
                             "ON CONFLICT (entry, uuid) DO UPDATE SET active = excluded.active, "
                             "stamp = excluded.stamp, raw = excluded.raw"));
        if (affected == -1)
            return false;
        missed += count - affected;
        return true;
    }

    bool updateElements()
    {
        int count = 0;
        const QString values = table(false, count);
        if (values.isEmpty())
            return true;
        const int affected = connection.runOnce(
            QStringLiteral(
                "UPDATE tessellum_elements t SET active = coalesce(v.active::smallint, t.active), "
                "stamp = coalesce(v.stamp::bigint, t.stamp), raw = coalesce(v.raw::bytea, t.raw) FROM ")
            + values
            + QStringLiteral(" JOIN tessellum_entries e ON e.uuid = v.entry "
                             "WHERE t.entry = e.id AND t.uuid = v.uuid"));
        if (affected == -1)
            return false;
        missed += count - affected;
        return true;
    }

    SqlConnection &connection;
    int &missed;
    std::vector<Row> rows;
    QHash<QPair<QString, QString>, int> places;
    int size = 0;
};

} // namespace

bool PostgresqlDialect::write(SqlConnection &connection, KnownElements &, const Write *first,
                              const Write *last, int &missed) const
{
    PostgresqlWrites writes(connection, missed);
    for (const Write *next = first; next != last; ++next) {
        if (!writes.make(*next))
            return false;
    }
    return writes.flush();
}

// So that writes can be taken while the server is away.
void PostgresqlDialect::committed(KnownElements &known, const Write *first, const Write *last) const
{
    for (const Write *write = first; write != last; ++write) {
        switch (write->kind) {
        case Write::Kind::PutEntry:
            known.addEntry(write->entry, 0, known.incarnation(), false);
            break;
        case Write::Kind::RemoveEntry:
            known.forget(write->entry);
            break;
        case Write::Kind::PutElement:
            known.addElement(write->entry, write->element, 0);
            break;
        case Write::Kind::UpdateElement:
            break;
        }
    }
}

} // namespace Tessellum::Plugins::Sql
