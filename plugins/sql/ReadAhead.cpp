#include "ReadAhead.h"

#include <QMutexLocker>

#include <algorithm>

namespace Tessellum::Plugins::Sql {

namespace {

constexpr qint64 ValidFor = 200; // milliseconds
constexpr int LongestSpan = 1000;
constexpr int MostBatches = 32;

} // namespace

std::optional<ElementRow> ReadAhead::find(const QString &entry, const QString &element, bool withRaw)
{
    const QMutexLocker lock(&mutex);
    const auto batch = batches.find(entry);
    if (batch == batches.end() || batch->age.hasExpired(ValidFor))
        return std::nullopt;
    const auto row = batch->rows.constFind(element);
    if (row == batch->rows.cend() || (withRaw && !row->hasRaw))
        return std::nullopt;
    ++batch->used;
    return *row;
}

int ReadAhead::span(const QString &entry)
{
    const QMutexLocker lock(&mutex);
    const auto batch = batches.constFind(entry);
    if (batch == batches.cend() || batch->used < batch->rows.size() / 2)
        return 0;
    return std::min(LongestSpan, batch->span * 4 + 4);
}

quint64 ReadAhead::generation(const QString &entry) const
{
    const QMutexLocker lock(&mutex);
    return lastChange.value(entry, before);
}

void ReadAhead::store(const QString &entry, quint64 generation, const std::vector<ElementRow> &rows)
{
    const QMutexLocker lock(&mutex);
    if (generation != lastChange.value(entry, before))
        return;
    if (batches.size() >= MostBatches && !batches.contains(entry))
        batches.clear();
    Batch &batch = batches[entry];
    batch.age.start();
    batch.rows.clear();
    batch.used = 1; // the one that was asked for
    batch.span = int(rows.size()) - 1;
    for (const ElementRow &row : rows)
        batch.rows.insert(row.uuid, row);
}

void ReadAhead::invalidate(const QString &entry)
{
    const QMutexLocker lock(&mutex);
    batches.remove(entry);
    lastChange.insert(entry, ++changes);
    if (lastChange.size() > MostBatches) {
        // The generations of all others change as well, which is no harm.
        lastChange.clear();
        before = ++changes;
        batches.clear();
    }
}

void ReadAhead::clear()
{
    const QMutexLocker lock(&mutex);
    batches.clear();
    lastChange.clear();
    before = ++changes;
}

} // namespace Tessellum::Plugins::Sql
