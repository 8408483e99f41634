#pragma once

#include "SqlConnection.h"
#include "Write.h"

#include <QSqlError>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace Tessellum::Plugins::Sql {

class KnownElements;

/*! An element as the medium has it. */
struct ElementRow
{
    qint64 id = 0;
    QString uuid;
    ElementFields fields;
    bool hasRaw = false; /*!< Whether the raw bytes were read, be there any or not. */
};

/*!
 * What differs from engine to engine. The tables are the same for all of them:
 *
 *     tessellum_schema    version
 *     tessellum_entries   id, uuid, name, classification, category_type, category_detail, storage_name,
 *                         persistence, capacity
 *     tessellum_elements  id, entry (id of it), uuid, active, stamp, raw
 *
 * Time stamps are stored less 2^63, so that a signed column sorts them; a capacity keeps its 64 bits. What
 * was never given is NULL. Elements have the order of their ids, and an index by entry and stamp.
 *
 * An object has no state of its own that changes: any thread may call.
 */
class SqlDialect
{
public:
    virtual ~SqlDialect() = default;

    virtual QString driver() const = 0;
    /*! Whether writes are collected while the medium is away. */
    virtual bool collectsInOutage() const = 0;
    /*! The most writes on their way. */
    virtual int queueLimit(const QVariant &location) const = 0;
    /*! \a location without what is secret, for messages. */
    virtual QString describe(const QVariant &location) const = 0;
    /*! Puts \a location into \a database, which is not open yet; false with a reason. */
    virtual bool configure(QSqlDatabase &database, const QVariant &location, QString &reason) const = 0;
    /*! Brings a fresh connection into the state in which the others are called; \a synchronous: what is
     * committed is on the disk. */
    virtual bool startSession(SqlConnection &connection, const QVariant &location,
                              bool synchronous) const = 0;
    /*! Lets nobody else make tables before the transaction ends. */
    virtual bool lockForTables(SqlConnection &connection) const = 0;
    /*! Whether the tables are there; false also where they cannot be, since what is there is not ours. */
    virtual bool hasTables(SqlConnection &connection, bool &found) const = 0;
    virtual QStringList tableStatements() const = 0;
    /*! Begins a transaction that writes. */
    virtual QString beginStatement() const = 0;
    /*! The seconds that an answer may take; 0 where the medium is no server. */
    virtual int patience(const QVariant &) const { return 0; }
    /*! The socket of an open connection to a server; -1 where it cannot be told. */
    virtual int socket(const QSqlDatabase &) const { return -1; }
    virtual bool isOutage(const QSqlError &error) const = 0;
    /*! Whether the connection has to be made anew after this error. */
    virtual bool needsReconnect(SqlConnection &connection) const = 0;
    /*! Whether the engine can keep \a text. */
    virtual bool canKeep(const QString &text) const = 0;

    /*! Makes the writes from \a first up to \a last, within a transaction; \a missed grows by those that
     * found no entry or element. */
    virtual bool write(SqlConnection &connection, KnownElements &known, const Write *first, const Write *last,
                       int &missed) const = 0;
    /*! The writes are in the medium, or none of them is: brings what is known in line. */
    virtual void committed(KnownElements &known, const Write *first, const Write *last) const = 0;
    virtual void rolledBack(KnownElements &known, const Write *first, const Write *last) const = 0;
    /*! The element and up to \a span rows that follow it, as far as they are of its entry; none where it is
     * unknown. */
    virtual bool readElements(SqlConnection &connection, KnownElements &known, const QString &entry,
                              const QString &element, int span, bool withRaw,
                              std::vector<ElementRow> &rows) const = 0;
    /*! The uuids of the elements of an entry in their order; none for an unknown entry. */
    virtual bool readIds(SqlConnection &connection, KnownElements &known, const QString &entry,
                         QStringList &uuids) const = 0;
    /*! Whether the element is on the medium; enters it into \a known then. */
    virtual bool findElement(SqlConnection &connection, KnownElements &known, const QString &entry,
                             const QString &element, bool &found) const = 0;

    /*! Whether the engine can keep all texts of \a write. */
    bool canKeepTexts(const Write &write) const;

    static qint64 toColumn(quint64 stamp) { return qint64(stamp ^ (quint64(1) << 63)); }
    static quint64 fromColumn(qint64 column) { return quint64(column) ^ (quint64(1) << 63); }

    /*! The columns id, uuid, active, stamp, length of raw, raw where it is short or of the row \a first. */
    static QString elementColumns(bool withRaw, const QString &first);
    static ElementRow readRow(const QSqlQuery &query, bool withRaw);
    /*! Writes the record of an entry. */
    static bool putEntry(SqlConnection &connection, const Write &write);
    static qint64 findEntry(SqlConnection &connection, const QString &uuid);
};

} // namespace Tessellum::Plugins::Sql
