#pragma once

#include <QString>
#include <QStringList>

/*! The type keys of the known storages. The keys of one list are equal; a look-up is exact and heeds case. */
namespace Tessellum::AppData::Storages::StorageTypes {

/*! A file of SQLite. */
inline const QStringList &Sqlite()
{
    static const QStringList keys{QStringLiteral("sqlite"), QStringLiteral("SQLite")};
    return keys;
}
/*! A variant of the SQLite file. */
inline const QStringList &NxSqlite()
{
    static const QStringList keys{QStringLiteral("nxsqlite"), QStringLiteral("NxSQLite")};
    return keys;
}
/*! A database of a PostgreSQL server. */
inline const QStringList &PostgreSql()
{
    static const QStringList keys{QStringLiteral("postgresql"), QStringLiteral("PostgreSQL")};
    return keys;
}
/*! The storage of another process; its location is a QUrl. */
inline const QStringList &Remote()
{
    static const QStringList keys{QStringLiteral("remote-storage-server"),
                                  QStringLiteral("remote-storage-client")};
    return keys;
}
/*! Forgets all with the process. */
inline const QStringList &Memory()
{
    static const QStringList keys{QStringLiteral("memory"), QStringLiteral("volatile")};
    return keys;
}

/*! Qt's name of the PostgreSQL driver. */
inline const QString &PostgreSqlDriver()
{
    static const QString name = QStringLiteral("QPSQL");
    return name;
}
/*! The schema that a storage uses where none is named. */
inline const QString &PostgreSqlSchema()
{
    static const QString name = QStringLiteral("public");
    return name;
}
/*! The host that a storage uses where none is named. */
inline const QString &PostgreSqlHost()
{
    static const QString name = QStringLiteral("localhost");
    return name;
}

} // namespace Tessellum::AppData::Storages::StorageTypes
