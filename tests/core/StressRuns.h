#pragma once

#include "core/StressGate.h"
#include "support/Watchdog.h"

#include <core/Library.h>
#include <shared/logging/LogHandler.h>

#include <QtTest>

constexpr int stressWorkerCount = 8;

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
