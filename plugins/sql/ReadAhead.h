#pragma once

#include "SqlDialect.h"

#include <QElapsedTimer>
#include <QHash>
#include <QMutex>

#include <optional>
#include <vector>

namespace Tessellum::Plugins::Sql {

/*!
 * Rows that were read along with one that was asked for, since elements are mostly asked for in their order.
 * They are valid until the entry changes and for a fraction of a second, as other processes may write as
 * well.
 *
 * Threads: any. The mutex guards all fields.
 */
class ReadAhead
{
public:
    /*! The row, if it is here, and with its raw bytes if \a withRaw. */
    std::optional<ElementRow> find(const QString &entry, const QString &element, bool withRaw);
    /*! How many rows to read along with one that is not here: more, the more the last ones were of use. */
    int span(const QString &entry);
    /*! What to pass to store(); asked for before the rows are read. */
    quint64 generation(const QString &entry) const;
    void store(const QString &entry, quint64 generation, const std::vector<ElementRow> &rows);
    void invalidate(const QString &entry);
    void clear();

private:
    struct Batch
    {
        QElapsedTimer age;
        QHash<QString, ElementRow> rows;
        int used = 0;
        int span = 0;
    };

    mutable QMutex mutex;
    QHash<QString, Batch> batches;
    quint64 changes = 0;
    quint64 before = 0; // the changes when all that is older was forgotten
    QHash<QString, quint64> lastChange; // of the entries that changed since
};

} // namespace Tessellum::Plugins::Sql
