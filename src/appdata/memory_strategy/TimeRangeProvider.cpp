#include <appdata/memory_strategy/TimeRangeProvider.h>
#include <shared/logging/FrameworkLog.h>

#include <QJsonDocument>
#include <QMutexLocker>

#include <utility>

namespace Tessellum::AppData::MemoryStrategies {

using Shared::Logging::FrameworkLog;

namespace {

using PointType = TimeRangePoint::Type;
using RangeType = TimeRangeProvider::RangeType;
using Range = TimeRangeProvider::Range;

/*! The value of a point that does not depend on the other one, which is 0 for the others. */
quint64 Resolve(const TimeRangePoint &point, quint64 start, quint64 end)
{
    const quint64 value = point.getValue();
    switch (point.getType()) {
    case PointType::Absolute:
        return value;
    case PointType::RelativeToStart:
        return value + start;
    case PointType::RelativeFromEnd:
        return value <= end ? end - value : start;
    default:
        return 0;
    }
}

RangeType RangeTypeOf(PointType from, PointType to)
{
    const bool hasTo = to != PointType::None;
    if (from == PointType::None)
        return hasTo ? RangeType::ToOnly : RangeType::None;
    return hasTo ? RangeType::Both : RangeType::FromOnly;
}

bool IsContradictory(PointType from, PointType to)
{
    return from == PointType::RelativeToFrom || to == PointType::RelativeFromTo
        || (from == PointType::RelativeFromTo && to == PointType::RelativeToFrom);
}

Range ResolveRange(const TimeRangePoint &from, const TimeRangePoint &to, quint64 start, quint64 end)
{
    Range resolved;
    resolved.fromResolved = Resolve(from, start, end);
    resolved.toResolved = Resolve(to, start, end);
    if (from.getType() == PointType::RelativeFromTo)
        resolved.fromResolved = resolved.toResolved - from.getValue();
    if (to.getType() == PointType::RelativeToFrom)
        resolved.toResolved = to.getValue() + resolved.fromResolved;
    if (resolved.fromResolved != 0 && resolved.toResolved != 0 && resolved.toResolved < resolved.fromResolved)
        std::swap(resolved.fromResolved, resolved.toResolved);
    resolved.rangeType = RangeTypeOf(from.getType(), to.getType());
    return resolved;
}

/*! False where \a key is there and no point. */
bool ParsePoint(const QJsonObject &object, TimeRangePoint &point)
{
    const QJsonValue json = object.value(point.getId());
    return (json.isUndefined() || json.isObject()) && point.parse(json.toObject());
}

} // namespace

bool TimeRangeProvider::Range::contains(quint64 timestamp) const
{
    switch (rangeType) {
    case RangeType::None:
        return false;
    case RangeType::FromOnly:
        return fromResolved <= timestamp;
    case RangeType::ToOnly:
        return timestamp <= toResolved;
    case RangeType::Both:
        return fromResolved <= timestamp && timestamp <= toResolved;
    }
    FrameworkLog().warning() << "TimeRangeProvider::isTimeStampInRange() invalid range type provided="
                             << quint32(rangeType);
    return false;
}

TimeRangeProvider::TimeRangeProvider(TimeSpanFunction timeSpanFunction)
    : timeSpan(std::move(timeSpanFunction))
{ }

bool TimeRangeProvider::configure(const QString &parameters)
{
    TimeRangePoint newFrom(QStringLiteral("from"));
    TimeRangePoint newTo(QStringLiteral("to"));
    if (!parameters.isEmpty()) {
        const QJsonDocument document = QJsonDocument::fromJson(parameters.toUtf8());
        if (!document.isObject() || !ParsePoint(document.object(), newFrom)
            || !ParsePoint(document.object(), newTo)) {
            return false;
        }
    }
    {
        const QMutexLocker locker(&mutex);
        from = newFrom;
        to = newTo;
    }
    setDirty();
    return true;
}

void TimeRangeProvider::recompute()
{
    State expected = State::Dirty;
    if (!state.compare_exchange_strong(expected, State::Computing))
        return;
    invalidate();
    // What has become dirty again meanwhile stays so.
    expected = State::Computing;
    state.compare_exchange_strong(expected, State::Clean);
}

TimeRangeProvider::Range TimeRangeProvider::getRange() const
{
    const QMutexLocker locker(&mutex);
    return range;
}

bool TimeRangeProvider::isTimeStampInRange(quint64 timestamp)
{
    recompute();
    return getRange().contains(timestamp);
}

void TimeRangeProvider::invalidate()
{
    QMutexLocker locker(&mutex);
    const TimeRangePoint newFrom = from;
    const TimeRangePoint newTo = to;
    const quint64 computation = ++computations;
    locker.unlock();

    if (IsContradictory(newFrom.getType(), newTo.getType())) {
        FrameworkLog().warning()
            << "TimeRangeProvider::invalidate() provides invalid time positions with from="
            << quint32(newFrom.getType()) << " and to=" << quint32(newTo.getType());
        return;
    }
    quint64 start = 0;
    quint64 end = 0;
    const bool isFixed = newFrom.getType() == PointType::Absolute && newTo.getType() == PointType::Absolute;
    if (!isFixed && !getTimeSpan(start, end))
        return;

    locker.relock();
    if (computation < published)
        return;
    published = computation;
    range = ResolveRange(newFrom, newTo, start, end);
}

bool TimeRangeProvider::getTimeSpan(quint64 &first, quint64 &last) const
{
    if (!timeSpan) {
        FrameworkLog().warning()
            << "TimeRangeProvider::invalidate() invalid function pointer to retrieve the "
               "elements time span!";
        return false;
    }
    if (timeSpan(first, last))
        return true;
    FrameworkLog().warning()
        << "TimeRangeProvider::invalidate() time span could not be retrieved. No elements "
           "available!";
    return false;
}

} // namespace Tessellum::AppData::MemoryStrategies
