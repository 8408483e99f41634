#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/utils/ElementTimeIndex.h>
#include <appdata/memory_strategy/ElementTimeSpanMemoryStrategy.h>

namespace Tessellum::AppData::MemoryStrategies {

using Data::Entries::Entry;

ElementTimeSpanMemoryStrategy::ElementTimeSpanMemoryStrategy(const QString &strategyId,
                                                             const QString &parameters,
                                                             const std::weak_ptr<const Entry> &strategyEntry)
    : MemoryStrategy(Keys().constFirst(), strategyId)
    , entry(strategyEntry)
    , range(std::make_shared<TimeRangeProvider>([strategyEntry](quint64 &first, quint64 &last) {
        const auto present = strategyEntry.lock();
        return present && present->getQueryInterface()->getTimeSpan(first, last);
    }))
{
    ElementTimeSpanMemoryStrategy::configure(parameters);
}

ElementTimeSpanMemoryStrategy::~ElementTimeSpanMemoryStrategy() = default;

const QStringList &ElementTimeSpanMemoryStrategy::Keys()
{
    static const QStringList keys{QStringLiteral("time"), QStringLiteral("timespan")};
    return keys;
}

bool ElementTimeSpanMemoryStrategy::configure(const QString &parameters)
{
    return range->configure(parameters);
}

qint32 ElementTimeSpanMemoryStrategy::evaluate(const QString &elementUuid)
{
    const auto present = entry.lock();
    if (!present)
        return NoDecision;
    // The element first: once it can be found the index knows of it, which is told of it only later.
    const auto element = present->getQueryInterface()->getElementById(elementUuid);
    const auto query = element ? element->getQueryInterface() : nullptr;
    const quint64 changes = present->timeIndex().changes();
    if (seenChanges.load() != changes) {
        range->setDirty();
        seenChanges.store(changes);
    }
    range->recompute();
    const TimeRangeProvider::Range resolved = range->getRange();
    if (resolved.rangeType == TimeRangeProvider::RangeType::None || !query)
        return NoDecision;
    return resolved.contains(query->getTimestamp()) ? Keep : Unload;
}

void ElementTimeSpanMemoryStrategy::handleElementAdded(const QString & /*elementId*/)
{
    range->setDirty();
}

} // namespace Tessellum::AppData::MemoryStrategies
