#pragma once

#include <QMutex>
#include <QWaitCondition>

/*! Lets the main thread hold all workers between two operations. */
class StressGate
{
public:
    explicit StressGate(int workerCount)
        : workers(workerCount)
    { }
    /*! Called by each worker between its operations; false: end. */
    bool pass()
    {
        QMutexLocker locker(&mutex);
        if (!closed)
            return !ended;
        ++waiting;
        changed.wakeAll();
        while (closed)
            changed.wait(&mutex);
        --waiting;
        return !ended;
    }
    /*! Returns when every worker stands at the gate. */
    void close()
    {
        QMutexLocker locker(&mutex);
        closed = true;
        while (waiting < workers)
            changed.wait(&mutex);
    }
    void open()
    {
        const QMutexLocker locker(&mutex);
        closed = false;
        changed.wakeAll();
    }
    void end()
    {
        const QMutexLocker locker(&mutex);
        ended = true;
        closed = false;
        changed.wakeAll();
    }

private:
    QMutex mutex;
    QWaitCondition changed;
    const int workers;
    int waiting = 0;
    bool closed = true;
    bool ended = false;
};
