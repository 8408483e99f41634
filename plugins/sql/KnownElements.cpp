#include "KnownElements.h"

#include <QMutexLocker>

namespace Tessellum::Plugins::Sql {

std::optional<qint64> KnownElements::entry(const QString &uuid) const
{
    const QMutexLocker lock(&mutex);
    const auto found = entries.constFind(uuid);
    return found == entries.cend() ? std::nullopt : std::optional<qint64>(found->id);
}

void KnownElements::addEntry(const QString &uuid, qint64 id, quint64 incarnation, bool complete)
{
    const QMutexLocker lock(&mutex);
    if (incarnation != forgotten)
        return;
    Entry &entry = entries[uuid];
    entry.id = id;
    entry.complete = entry.complete || complete;
}

std::optional<qint64> KnownElements::element(const QString &entryUuid, const QString &elementUuid) const
{
    return find(entryUuid, elementUuid).row;
}

KnownElements::Place KnownElements::find(const QString &entryUuid, const QString &elementUuid) const
{
    Place place;
    const QMutexLocker lock(&mutex);
    const auto entry = entries.constFind(entryUuid);
    if (entry == entries.cend())
        return place;
    place.entry = entry->id;
    place.isComplete = entry->complete;
    const auto found = entry->elements.constFind(elementUuid);
    if (found != entry->elements.cend())
        place.row = found.value();
    return place;
}

KnownElements::Place KnownElements::findOrAdd(const QString &entryUuid, const QString &elementUuid,
                                              qint64 fresh)
{
    const QMutexLocker lock(&mutex);
    const auto entry = entries.find(entryUuid);
    if (entry == entries.end())
        return Place();
    if (!entry->complete) {
        const auto found = entry->elements.constFind(elementUuid);
        return {entry->id, found == entry->elements.cend() ? std::nullopt : std::optional(found.value()),
                false};
    }
    // One look-up: most elements are new, and the table is large.
    qint64 &row = entry->elements[elementUuid];
    if (row == 0)
        row = fresh;
    return {entry->id, row, true};
}

void KnownElements::addElement(const QString &entryUuid, const QString &elementUuid, qint64 id)
{
    const QMutexLocker lock(&mutex);
    entries[entryUuid].elements.insert(elementUuid, id);
}

void KnownElements::addAll(const QString &entryUuid, qint64 id, quint64 incarnation,
                           const std::vector<Row> &rows)
{
    const QMutexLocker lock(&mutex);
    if (incarnation != forgotten)
        return;
    Entry &entry = entries[entryUuid];
    entry.id = id;
    entry.complete = true;
    entry.elements.reserve(entry.elements.size() + int(rows.size()));
    for (const auto &[uuid, row] : rows)
        entry.elements.insert(uuid, row);
}

quint64 KnownElements::incarnation() const
{
    const QMutexLocker lock(&mutex);
    return forgotten;
}

void KnownElements::forget(const QString &entryUuid)
{
    const QMutexLocker lock(&mutex);
    ++forgotten;
    entries.remove(entryUuid);
}

void KnownElements::forget(const Write *first, const Write *last)
{
    const QMutexLocker lock(&mutex);
    ++forgotten;
    for (const Write *write = first; write != last; ++write)
        entries.remove(write->entry);
}

void KnownElements::clear()
{
    const QMutexLocker lock(&mutex);
    ++forgotten;
    entries.clear();
}

} // namespace Tessellum::Plugins::Sql
