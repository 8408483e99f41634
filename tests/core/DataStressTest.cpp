#include "core/DataStressWorker.h"
#include "core/StressRuns.h"

/*! Eight threads record, read and remove at once, with starts and stops in between: tree, links, media and
 * what was acknowledged agree. */
class DataStressTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void everythingAtOnce()
    {
        StressGate gate(stressWorkerCount);
        QVector<std::shared_ptr<DataStressWorker>> workers;
        for (int i = 0; i < stressWorkerCount; ++i)
            workers.append(std::make_shared<DataStressWorker>(i, gate));
        int operations = 0;
        RunStress(
            gate, workers,
            [&workers] {
                return std::all_of(workers.begin(), workers.end(),
                                   [](const auto &worker) { return worker->beginRun(); });
            },
            [&] {
                for (const auto &worker : qAsConst(workers))
                    operations += worker->operationCount();
            });
        QVERIFY(operations > 0);
    }
};

QTEST_GUILESS_MAIN(DataStressTest)
#include "DataStressTest.moc"
