#pragma once

#include <notification/TaskPoints.h>
#include <shared/foundation/StringHelpers.h>

#include <QHash>
#include <QMutex>
#include <QString>
#include <QVector>

#include <atomic>
#include <memory>
#include <support/Literals.h>

/*! Orders what happens in all threads: a number taken later is larger. */
class StressClock
{
public:
    static quint64 next() { return ++now; }

private:
    static inline std::atomic<quint64> now{0};
};

enum class StressKind { Create, Update, Delete };

/*! One operation whose call has returned as a success, and the points that it must have reported. */
struct StressOperation
{
    StressKind kind;
    QString path;
    qlonglong value; // of an update: unique in the whole run
    quint64 begun;
    QVector<int> points;
};

/*! One registration of a handler, and what it heard. */
class StressHandler
{
public:
    struct Heard
    {
        QString path;
        int point;
        qlonglong value;
    };

    StressHandler(StressKind handlerKind, const QString &handlerPattern, int handlerPoint,
                  int handlerAllPoints)
        : kind(handlerKind)
        , pattern(handlerPattern)
        , point(handlerPoint)
        , allPoints(handlerAllPoints)
    { }

    void hear(const QString &path, int reported, qlonglong value)
    {
        const QMutexLocker locker(&mutex);
        heard.append({path, reported, value});
    }
    QVector<Heard> takeHeard()
    {
        const QMutexLocker locker(&mutex);
        return heard;
    }
    bool wants(int reported) const { return point == allPoints || point == reported; }

    const StressKind kind;
    const QString pattern;
    const int point;
    const int allPoints;
    quint64 registered = 0; // taken after the registration returned
    /*! Ended while work went on: what was queued for it then is skipped, so nothing counts as missing. */
    std::atomic<bool> endedEarly{false};

private:
    QMutex mutex;
    QVector<Heard> heard;
};

inline QString keyOf(const QString &path, int point, qlonglong value)
{
    return "%1|%2|%3"_s.arg(path).arg(point).arg(value);
}

/*! What \a handler heard, as counts by key; creates and deletes of one path can come several times. */
inline QHash<QString, int> countHeard(StressHandler &handler, QString &difference)
{
    QHash<QString, int> counts;
    for (const StressHandler::Heard &heard : handler.takeHeard()) {
        if (!handler.wants(heard.point))
            difference = "heard of point %1 at %2, registered for %3"_s.arg(heard.point)
                             .arg(heard.path)
                             .arg(handler.point);
        const int count = ++counts[keyOf(heard.path, heard.point, heard.value)];
        const bool tellsOthers = heard.path.startsWith("stress.shared."_s)
            && heard.point == static_cast<int>(Tessellum::Notification::UpdatePoint::Done);
        if (handler.kind == StressKind::Update && count > 1 && !tellsOthers)
            difference = "heard twice of value %1 at %2"_s.arg(heard.value).arg(heard.path);
    }
    return counts;
}

/*! What one run of the library was seen to do, by all threads. */
class StressRecord
{
public:
    void add(const StressOperation &operation)
    {
        const QMutexLocker locker(&mutex);
        operations.append(operation);
    }
    void add(const std::shared_ptr<StressHandler> &handler)
    {
        const QMutexLocker locker(&mutex);
        handlers.append(handler);
    }
    /*!
     * The caller of an update goes on before the last point is told, so a node that moves then is told of
     * under its new path, and one that is deleted not at all: the last points of updates at \a path count no
     * more.
     */
    void forgetLastPoints(const QString &path)
    {
        const QMutexLocker locker(&mutex);
        for (StressOperation &operation : operations) {
            if (operation.kind == StressKind::Update && operation.path == path)
                operation.points.removeOne(static_cast<int>(Tessellum::Notification::UpdatePoint::Done));
        }
    }
    void clear()
    {
        const QMutexLocker locker(&mutex);
        operations.clear();
        handlers.clear();
    }

    /*! Empty if what was heard agrees with what was done; otherwise the first difference. */
    QString findDifference() const
    {
        const QMutexLocker locker(&mutex);
        QString difference;
        for (const std::shared_ptr<StressHandler> &handler : handlers) {
            const QHash<QString, int> counts = countHeard(*handler, difference);
            QHash<QString, int> expected;
            for (const StressOperation &operation : operations) {
                if (operation.kind != handler->kind || operation.begun < handler->registered
                    || handler->endedEarly
                    || !Shared::WildcardStringCompare(operation.path.constData(),
                                                      handler->pattern.constData()))
                    continue;
                for (const int point : operation.points) {
                    if (handler->wants(point))
                        ++expected[keyOf(operation.path, point, operation.value)];
                }
            }
            for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
                if (counts.value(it.key()) < it.value())
                    difference
                        = "pattern %1 point %2: %3 expected %4 times, heard %5 times"_s.arg(handler->pattern)
                              .arg(handler->point)
                              .arg(it.key())
                              .arg(it.value())
                              .arg(counts.value(it.key()));
            }
        }
        return difference;
    }
    int operationCount() const
    {
        const QMutexLocker locker(&mutex);
        return operations.size();
    }
    int heardCount() const
    {
        const QMutexLocker locker(&mutex);
        int count = 0;
        for (const std::shared_ptr<StressHandler> &handler : handlers)
            count += handler->takeHeard().size();
        return count;
    }

private:
    mutable QMutex mutex;
    QVector<StressOperation> operations;
    QVector<std::shared_ptr<StressHandler>> handlers;
};
