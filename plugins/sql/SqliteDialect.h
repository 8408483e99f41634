#pragma once

#include "SqlDialect.h"

namespace Tessellum::Plugins::Sql {

/*! SQLite: a file. Elements are found by the index in memory; see KnownElements. */
class SqliteDialect : public SqlDialect
{
public:
    QString driver() const override { return QStringLiteral("QSQLITE"); }
    bool collectsInOutage() const override { return false; }
    int queueLimit(const QVariant &location) const override;
    QString describe(const QVariant &location) const override;
    bool configure(QSqlDatabase &database, const QVariant &location, QString &reason) const override;
    bool startSession(SqlConnection &connection, const QVariant &location, bool synchronous) const override;
    bool hasTables(SqlConnection &connection, bool &found) const override;
    QStringList tableStatements() const override;
    bool lockForTables(SqlConnection &connection) const override;
    QString beginStatement() const override { return QStringLiteral("BEGIN IMMEDIATE"); }
    bool isOutage(const QSqlError &error) const override;
    bool needsReconnect(SqlConnection &) const override { return false; }
    bool canKeep(const QString &) const override { return true; }
    bool write(SqlConnection &connection, KnownElements &known, const Write *first, const Write *last,
               int &missed) const override;
    void committed(KnownElements &, const Write *, const Write *) const override { }
    void rolledBack(KnownElements &known, const Write *first, const Write *last) const override;
    bool readElements(SqlConnection &connection, KnownElements &known, const QString &entry,
                      const QString &element, int span, bool withRaw,
                      std::vector<ElementRow> &rows) const override;
    bool readIds(SqlConnection &connection, KnownElements &known, const QString &entry,
                 QStringList &uuids) const override;
    bool findElement(SqlConnection &connection, KnownElements &known, const QString &entry,
                     const QString &element, bool &found) const override;

    /*! The rows of an element and its entry, -1 for none; false for a failure. Reads the rows of the whole
     * entry the first time that one of them is not known. */
    static bool Locate(SqlConnection &connection, KnownElements &known, const QString &entry,
                       const QString &element, qint64 &entryId, qint64 &row);
};

} // namespace Tessellum::Plugins::Sql
