#pragma once

#include "support/Watchdog.h"

#include <core/Library.h>
#include <shared/logging/LogHandler.h>

#include <QMutex>
#include <QtTest>
#include <QWaitCondition>

constexpr int stressWorkerCount = 8;

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

/*!
 * Lets \a workers work and stand still in turn, for as long as a stress test takes: \a startRun starts the
 * library, \a compare comes while all stand still, and the stop in the middle of the next operations. Ends
 * with the first failure.
 */
template <class Worker>
void RunStress(StressGate &gate, const QVector<std::shared_ptr<Worker>> &workers,
               const std::function<bool()> &startRun, const std::function<void()> &compare)
{
    // Each refused update says so.
    Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::critical);
    TestSupport::Watchdog watchdog;
    const auto joinWorkers = qScopeGuard([&] {
        gate.end();
        for (const auto &worker : workers)
            worker->wait();
        uninitializeLibrary();
    });
    for (const auto &worker : workers)
        worker->start();
    gate.close();

    QElapsedTimer passed;
    passed.start();
    while (passed.elapsed() < TestSupport::StressSeconds() * 1000) {
        QCOMPARE(initializeLibrary(), 0);
        QVERIFY(startRun());
        Worker::stopping = false;
        watchdog.progress("start");
        gate.open();
        QTest::qWait(400); // the length of a run, not a wait for a condition
        gate.close();
        watchdog.progress("work");
        compare();
        for (const auto &worker : workers)
            QCOMPARE(worker->findDifference(), QString());
        if (QTest::currentTestFailed())
            return;
        Worker::stopping = true;
        gate.open();
        QCOMPARE(uninitializeLibrary(), 1);
        gate.close();
        watchdog.progress("stop");
    }
}
