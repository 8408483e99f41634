#include "SqlSchema.h"

namespace Tessellum::Plugins::Sql {

namespace {

constexpr int SchemaVersion = 1;

bool MakeTables(SqlConnection &connection, const SqlDialect &dialect)
{
    for (const QString &statement : dialect.tableStatements()) {
        if (connection.runOnce(statement) == -1)
            return false;
    }
    return connection.run(QStringLiteral("INSERT INTO tessellum_schema (version) VALUES (?)"),
                          {SchemaVersion});
}

bool CheckTables(SqlConnection &connection)
{
    const QVariant version = connection.value(QStringLiteral("SELECT max(version) FROM tessellum_schema"));
    if (connection.lastError())
        return false;
    if (version.toInt() > SchemaVersion) {
        return connection.fail(QStringLiteral("the tables are of version %1, newer than %2")
                                   .arg(version.toInt())
                                   .arg(SchemaVersion));
    }
    if (version.toInt() != SchemaVersion)
        return connection.fail(QStringLiteral("the tables have no version"));
    // Tables of the same names, yet not ours, fail here and not in the middle of the work.
    return connection.run(
               QStringLiteral("SELECT id, uuid, name, classification, category_type, category_detail, "
                              "storage_name, persistence, capacity FROM tessellum_entries WHERE id = 0"))
        && connection.run(QStringLiteral(
            "SELECT id, entry, uuid, active, stamp, raw FROM tessellum_elements WHERE id = 0"));
}

bool PrepareInTransaction(SqlConnection &connection, const SqlDialect &dialect)
{
    bool found = false;
    if (!dialect.lockForTables(connection) || !dialect.hasTables(connection, found))
        return false;
    return found ? CheckTables(connection) : MakeTables(connection, dialect) && CheckTables(connection);
}

} // namespace

bool PrepareSchema(SqlConnection &connection, const SqlDialect &dialect)
{
    if (!connection.begin())
        return false;
    if (PrepareInTransaction(connection, dialect))
        return connection.commit();
    connection.rollback();
    return false;
}

} // namespace Tessellum::Plugins::Sql
