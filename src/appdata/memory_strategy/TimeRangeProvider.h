#pragma once

#include <appdata/memory_strategy/TimeRangePoint.h>

#include <QMutex>

#include <atomic>
#include <functional>
#include <limits>

namespace Tessellum::AppData::MemoryStrategies {

/*!
 * A time range of one or two points, resolved against the time span of an entry when somebody asks.
 *
 * Threads: any; one computes at a time, and who comes meanwhile takes the range as it stands. Lock: guards
 * the points and the resolved range, which are published together; the time span is asked for without it.
 */
class TESSELLUM_EXPORT TimeRangeProvider
{
public:
    /*! The smallest and largest time stamp; false without elements. */
    using TimeSpanFunction = std::function<bool(quint64 &first, quint64 &last)>;

    enum class RangeType : quint32 { None = 0, FromOnly = 1, ToOnly = 2, Both = 3 };

    /*! The range as it was resolved; both ends belong to it. */
    struct TESSELLUM_EXPORT Range
    {
        RangeType rangeType = RangeType::None;
        quint64 fromResolved = 0;
        quint64 toResolved = std::numeric_limits<quint64>::max();

        /*! False for RangeType::None. */
        bool contains(quint64 timestamp) const;
    };

    explicit TimeRangeProvider(TimeSpanFunction timeSpan);

    /*!
     * Takes {"from": POINT, "to": POINT}, either of which may be missing, see TimeRangePoint; an empty text
     * clears both. False, with nothing changed, for anything else.
     */
    bool configure(const QString &parameters);
    /*! The range is to be resolved anew before its next use. */
    void setDirty() { state.store(State::Dirty); }
    /*! Resolves the range if it is dirty and nobody else does so. */
    void recompute();
    /*! The range as it stands. */
    Range getRange() const;
    /*! Resolves the range if it is dirty, and asks it. */
    bool isTimeStampInRange(quint64 timestamp);

private:
    enum class State { Clean = 0, Dirty = 1, Computing = 2 };

    void invalidate();
    bool getTimeSpan(quint64 &first, quint64 &last) const;

    const TimeSpanFunction timeSpan;
    std::atomic<State> state{State::Dirty};
    mutable QMutex mutex;
    TimeRangePoint from{QStringLiteral("from")};
    TimeRangePoint to{QStringLiteral("to")};
    Range range;
    // A computation that another one has overtaken publishes nothing.
    quint64 computations = 0;
    quint64 published = 0;
};

} // namespace Tessellum::AppData::MemoryStrategies
