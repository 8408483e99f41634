#pragma once

#include <notification/TaskPoints.h>

#include <QHash>
#include <QMutex>
#include <QString>
#include <QVector>

#include <atomic>
#include <memory>

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

/*! What one run of the library was seen to do, by all threads. */
class StressRecord
{
public:
    void add(const StressOperation &operation);
    void add(const std::shared_ptr<StressHandler> &handler);
    /*!
     * The caller of an update goes on before the last point is told, so a node that moves then is told of
     * under its new path, and one that is deleted not at all: the last points of updates at \a path count no
     * more.
     */
    void forgetLastPoints(const QString &path);
    void clear();

    /*! Empty if what was heard agrees with what was done; otherwise the first difference. */
    QString findDifference() const;
    int operationCount() const;
    int heardCount() const;

private:
    mutable QMutex mutex;
    QVector<StressOperation> operations;
    QVector<std::shared_ptr<StressHandler>> handlers;
};
