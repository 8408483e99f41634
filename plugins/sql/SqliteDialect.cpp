#include "KnownElements.h"
#include "SqliteDialect.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QThread>
#include <QUrl>

#include <algorithm>

namespace Tessellum::Plugins::Sql {

namespace {

constexpr int QueueLimit = 20000;
constexpr int BusyTimeoutMilliseconds = 500;

// The primary result codes of SQLite that tell of the file and not of what was asked.
bool TellsOfTheFile(int code)
{
    constexpr int Permission = 3, Busy = 5, Locked = 6, NoMemory = 7, ReadOnly = 8, Interrupted = 9, Io = 10,
                  Corrupt = 11, Full = 13, CannotOpen = 14, Protocol = 15, NoDatabase = 26;
    switch (code & 0xff) {
    case Permission:
    case Busy:
    case Locked:
    case NoMemory:
    case ReadOnly:
    case Interrupted:
    case Io:
    case Corrupt:
    case Full:
    case CannotOpen:
    case Protocol:
    case NoDatabase:
        return true;
    default:
        return false;
    }
}

QString FileName(const QVariant &location)
{
    if (location.userType() != QMetaType::QUrl)
        return location.toString();
    const QUrl url = location.toUrl();
    return url.isLocalFile() ? url.toLocalFile() : url.path();
}

// Whether the file is shorter than the engine takes it to be, and no log is there that could hold the rest.
// The file itself is not opened for this: closing it would end every lock that this process has on it, and
// another process that leaves the file then deletes the log under ours.
bool IsCut(SqlConnection &connection, const QString &fileName)
{
    // A single byte makes no page for the engine, which would write a new database over it.
    const qint64 pages = std::max(1LL, connection.value(QStringLiteral("PRAGMA page_count")).toLongLong());
    const qint64 pageSize = connection.value(QStringLiteral("PRAGMA page_size")).toLongLong();
    const qint64 size = QFileInfo(fileName).size();
    return size > 0 && size < pages * pageSize && QFileInfo(fileName + QLatin1String("-wal")).size() == 0;
}

// Lets the engine say what is wrong with a file that is cut.
bool FailCut(SqlConnection &connection)
{
    const QVariant text = connection.value(QStringLiteral("PRAGMA quick_check(1)"));
    if (connection.lastError())
        return false;
    const QString result = text.toString();
    return connection.fail(result == QLatin1String("ok") ? QStringLiteral("database disk image is malformed")
                                                         : result);
}

// All rows of an entry, which become known; an id of -1 where there is no such entry.
bool ReadRows(SqlConnection &connection, KnownElements &known, const QString &entry, qint64 &entryId,
              std::vector<KnownElements::Row> &rows)
{
    const quint64 incarnation = known.incarnation();
    entryId = SqlDialect::findEntry(connection, entry);
    if (entryId == -1)
        return !connection.lastError();
    QSqlQuery *query = connection.run(
        QStringLiteral("SELECT uuid, id FROM tessellum_elements WHERE entry = ? ORDER BY id"), {entryId});
    while (query && query->next())
        rows.emplace_back(query->value(0).toString(), query->value(1).toLongLong());
    if (!connection.finish(query))
        return false;
    known.addAll(entry, entryId, incarnation, rows);
    return true;
}

// The engine does not wait by itself where two processes open a new file at once: one of both would have to
// give way.
bool SwitchToWriteAheadLog(SqlConnection &connection)
{
    constexpr unsigned long PauseMilliseconds = 5;
    const QDeadlineTimer deadline(BusyTimeoutMilliseconds);
    for (;;) {
        const QVariant mode = connection.value(QStringLiteral("PRAGMA journal_mode = WAL"));
        const bool answered = !connection.lastError();
        if (answered && mode.toString() == QLatin1String("wal"))
            return true;
        if (answered)
            return connection.fail(QStringLiteral("no write-ahead log is possible here"));
        if (!connection.lastError().isOutage || deadline.hasExpired())
            return false;
        QThread::msleep(PauseMilliseconds);
    }
}

} // namespace

int SqliteDialect::queueLimit(const QVariant &) const
{
    return QueueLimit;
}

QString SqliteDialect::describe(const QVariant &location) const
{
    return FileName(location);
}

bool SqliteDialect::configure(QSqlDatabase &database, const QVariant &location, QString &reason) const
{
    const QString fileName = FileName(location);
    if (fileName.isEmpty()) {
        reason = QStringLiteral("the location names no file");
        return false;
    }
    database.setDatabaseName(fileName);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(BusyTimeoutMilliseconds));
    return true;
}

bool SqliteDialect::startSession(SqlConnection &connection, const QVariant &location, bool synchronous) const
{
    // Before anything is written: a file that is not ours stays as it is.
    bool found = false;
    const QString fileName = FileName(location);
    // Seen twice, as another process may just move its log into the file.
    if (IsCut(connection, fileName) && IsCut(connection, fileName) && !FailCut(connection))
        return false;
    if (!hasTables(connection, found))
        return false;
    if (!SwitchToWriteAheadLog(connection))
        return false;
    return connection.runOnce(synchronous ? QStringLiteral("PRAGMA synchronous = FULL")
                                          : QStringLiteral("PRAGMA synchronous = NORMAL"))
        != -1;
}

bool SqliteDialect::hasTables(SqlConnection &connection, bool &found) const
{
    const QVariant first = connection.value(
        QStringLiteral("SELECT name FROM sqlite_master ORDER BY name = 'tessellum_schema' DESC LIMIT 1"));
    if (connection.lastError())
        return false;
    found = first.toString() == QLatin1String("tessellum_schema");
    return found || !first.isValid()
        || connection.fail(QStringLiteral("the file is a database of another program"));
}

QStringList SqliteDialect::tableStatements() const
{
    return {
        QStringLiteral("CREATE TABLE tessellum_schema (version INTEGER NOT NULL)"),
        QStringLiteral("CREATE TABLE tessellum_entries (id INTEGER PRIMARY KEY, uuid TEXT NOT NULL UNIQUE, "
                       "name TEXT NOT NULL, classification TEXT NOT NULL, category_type INTEGER NOT NULL, "
                       "category_detail TEXT NOT NULL, storage_name TEXT NOT NULL, "
                       "persistence INTEGER NOT NULL, capacity INTEGER NOT NULL)"),
        QStringLiteral("CREATE TABLE tessellum_elements (id INTEGER PRIMARY KEY, entry INTEGER NOT NULL, "
                       "uuid TEXT NOT NULL, active INTEGER, stamp INTEGER, raw BLOB)"),
        QStringLiteral("CREATE INDEX tessellum_elements_by_stamp ON tessellum_elements (entry, stamp)")};
}

bool SqliteDialect::lockForTables(SqlConnection &) const
{
    return true; // the transaction does
}

bool SqliteDialect::isOutage(const QSqlError &error) const
{
    bool isNumber = false;
    const int code = error.nativeErrorCode().toInt(&isNumber);
    return !isNumber || TellsOfTheFile(code);
}

bool SqliteDialect::Locate(SqlConnection &connection, KnownElements &known, const QString &entry,
                           const QString &element, qint64 &entryId, qint64 &row)
{
    const KnownElements::Place place = known.find(entry, element);
    entryId = place.entry.value_or(-1);
    row = place.row.value_or(-1);
    if (place.row || place.isComplete)
        return true;
    std::vector<KnownElements::Row> rows;
    if (!ReadRows(connection, known, entry, entryId, rows))
        return false;
    for (const auto &[uuid, id] : rows) {
        if (uuid == element)
            row = id;
    }
    return true;
}

bool SqliteDialect::readIds(SqlConnection &connection, KnownElements &known, const QString &entry,
                            QStringList &uuids) const
{
    qint64 entryId = -1;
    std::vector<KnownElements::Row> rows;
    if (!ReadRows(connection, known, entry, entryId, rows))
        return false;
    uuids.clear();
    uuids.reserve(int(rows.size()));
    for (const auto &[uuid, id] : rows)
        uuids.append(uuid);
    return true;
}

bool SqliteDialect::findElement(SqlConnection &connection, KnownElements &known, const QString &entry,
                                const QString &element, bool &found) const
{
    qint64 entryId = -1;
    qint64 row = -1;
    if (!Locate(connection, known, entry, element, entryId, row))
        return false;
    found = row != -1;
    return true;
}

bool SqliteDialect::readElements(SqlConnection &connection, KnownElements &known, const QString &entry,
                                 const QString &element, int span, bool withRaw,
                                 std::vector<ElementRow> &rows) const
{
    qint64 entryId = -1;
    qint64 row = -1;
    if (!Locate(connection, known, entry, element, entryId, row))
        return false;
    if (row == -1)
        return true;
    // By the row alone: the index by stamp would sort the whole entry.
    QSqlQuery *query = connection.run(
        QStringLiteral("SELECT ") + elementColumns(withRaw, QStringLiteral("f.id"))
            + QStringLiteral(" FROM (SELECT ? AS id, ? AS entry) f CROSS JOIN tessellum_elements t "
                             "WHERE t.id BETWEEN f.id AND f.id + ? AND +t.entry = f.entry "
                             "ORDER BY t.id"),
        {row, entryId, span});
    while (query && query->next())
        rows.push_back(readRow(*query, withRaw));
    return connection.finish(query);
}

} // namespace Tessellum::Plugins::Sql
