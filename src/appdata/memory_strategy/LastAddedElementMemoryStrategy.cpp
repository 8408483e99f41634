#include <appdata/data/entries/Entry.h>
#include <appdata/memory_strategy/LastAddedElementMemoryStrategy.h>
#include <shared/synchronization/ScopedLock.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace Tessellum::AppData::MemoryStrategies {

using Shared::Synchronization::ScopedLock;

LastAddedElementMemoryStrategy::LastAddedElementMemoryStrategy(
    const QString &strategyId, const QString &parameters,
    const std::weak_ptr<const Data::Entries::Entry> &strategyEntry)
    : MemoryStrategy(Keys().constFirst(), strategyId)
    , entry(strategyEntry)
{
    LastAddedElementMemoryStrategy::configure(parameters);
}

LastAddedElementMemoryStrategy::~LastAddedElementMemoryStrategy() = default;

const QStringList &LastAddedElementMemoryStrategy::Keys()
{
    static const QStringList keys{QStringLiteral("last"), QStringLiteral("lastadded")};
    return keys;
}

bool LastAddedElementMemoryStrategy::configure(const QString &parameters)
{
    constexpr double Largest = std::numeric_limits<qint32>::max();
    // What is no number reads as 0.
    const double wanted
        = QJsonDocument::fromJson(parameters.toUtf8()).object().value(QLatin1String("limit")).toDouble();
    if (!(wanted >= 1))
        return false;
    const ScopedLock locker(this);
    limit = qint32(qMin(wanted, Largest));
    return true;
}

qint32 LastAddedElementMemoryStrategy::evaluate(const QString &elementUuid)
{
    const auto present = entry.lock();
    const quint64 count = present ? present->getNumberOfChildren() : 0;
    if (count == 0)
        return NoDecision;
    // By its position rather than by a look at each of the last: this costs the same whatever the limit.
    quint64 index = 0;
    const auto element = present->getChildById(elementUuid);
    if (!element || !present->hasChild(element, &index))
        return Unload;
    const ScopedLock locker(this);
    return index + quint64(limit) >= count ? Keep : Unload;
}

} // namespace Tessellum::AppData::MemoryStrategies
