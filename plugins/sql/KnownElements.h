#pragma once

#include "Write.h"

#include <QHash>
#include <QMutex>
#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace Tessellum::Plugins::Sql {

/*!
 * The rows of entries and elements that the medium is known to hold: an index by uuid, kept in memory since
 * one on the medium would cost thirty times the row that it leads to.
 *
 * What is not here may be on the medium all the same, unless the entry is complete. A reader that fills in
 * rows passes the incarnation that it saw before it read: rows of an entry that was removed or rolled back
 * meanwhile are not taken.
 *
 * Threads: any. The mutex guards all fields.
 */
class KnownElements
{
public:
    using Row = std::pair<QString, qint64>;
    struct Place
    {
        std::optional<qint64> entry;
        std::optional<qint64> row;
        bool isComplete = false; /*!< Whether what has no row here has none on the medium. */
    };

    std::optional<qint64> entry(const QString &uuid) const;
    void addEntry(const QString &uuid, qint64 id, quint64 incarnation, bool complete);
    std::optional<qint64> element(const QString &entryUuid, const QString &elementUuid) const;
    Place find(const QString &entryUuid, const QString &elementUuid) const;
    /*! As find(), but an element that is neither known nor on the medium is entered with the row \a fresh,
     * and told so. */
    Place findOrAdd(const QString &entryUuid, const QString &elementUuid, qint64 fresh);
    void addElement(const QString &entryUuid, const QString &elementUuid, qint64 id);
    /*! All rows of the entry up to now; it is complete then. */
    void addAll(const QString &entryUuid, qint64 id, quint64 incarnation, const std::vector<Row> &rows);
    quint64 incarnation() const;
    /*! Forgets the entry, as it is removed or was rolled back. */
    void forget(const QString &entryUuid);
    /*! The entries of these writes. */
    void forget(const Write *first, const Write *last);
    void clear();

private:
    struct Entry
    {
        qint64 id = 0;
        bool complete = false;
        QHash<QString, qint64> elements;
    };

    mutable QMutex mutex;
    quint64 forgotten = 0;
    QHash<QString, Entry> entries;
};

} // namespace Tessellum::Plugins::Sql
