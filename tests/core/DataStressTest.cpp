#include "core/DataStressWorker.h"
#include "support/Watchdog.h"

#include <core/Library.h>
#include <shared/logging/LogHandler.h>

#include <QtTest>

using namespace Tessellum;

namespace {

constexpr int workerCount = 8;

} // namespace

/*! Eight threads record, read and remove at once, with starts and stops in between: tree, links, media and
 * what was acknowledged agree. */
class DataStressTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void everythingAtOnce();
};

void DataStressTest::everythingAtOnce()
{
    Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::critical);
    TestSupport::Watchdog watchdog;
    StressGate gate(workerCount);
    QVector<std::shared_ptr<DataStressWorker>> workers;
    for (int i = 0; i < workerCount; ++i)
        workers.append(std::make_shared<DataStressWorker>(i, gate));
    const auto joinWorkers = qScopeGuard([&] {
        gate.end();
        for (const auto &worker : qAsConst(workers))
            worker->wait();
        workers.clear();
        uninitializeLibrary();
    });
    for (const auto &worker : qAsConst(workers))
        worker->start();
    gate.close();

    QElapsedTimer passed;
    passed.start();
    int runs = 0;
    while (passed.elapsed() < TestSupport::StressSeconds() * 1000) {
        QCOMPARE(initializeLibrary(), 0);
        for (const auto &worker : qAsConst(workers))
            QVERIFY(worker->beginRun());
        DataStressWorker::stopping = false;
        watchdog.progress("start");
        gate.open();
        QTest::qWait(400); // the length of a run, not a wait for a condition
        gate.close();
        watchdog.progress("work");
        for (const auto &worker : qAsConst(workers))
            QCOMPARE(worker->findDifference(), QString());
        // The stop comes in the middle of the next operations.
        DataStressWorker::stopping = true;
        gate.open();
        QCOMPARE(uninitializeLibrary(), 1);
        gate.close();
        watchdog.progress("stop");
        ++runs;
    }
    int operations = 0;
    for (const auto &worker : qAsConst(workers))
        operations += worker->operationCount();
    qInfo("%d runs, %d operations", runs, operations);
    QVERIFY(operations > 0);
}

QTEST_GUILESS_MAIN(DataStressTest)
#include "DataStressTest.moc"
