#include <notification/utils/FrameWorker.h>

#include <QSemaphore>
#include <QtTest>

#include <atomic>

using Tessellum::Notification::utils::FrameWorker;
using Tessellum::Notification::utils::FrameWorkers;

class FrameWorkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stepsKeepTheirOrder();
    void anEndDropsWhatIsQueuedAndWaitsForTheStepThatRuns();
    void theLastPointerMayGoWithinAStep();
};

void FrameWorkerTest::stepsKeepTheirOrder()
{
    FrameWorker worker;
    QList<int> order;
    QSemaphore done;
    for (int number = 0; number < 1000; ++number) {
        QVERIFY(worker.post([&order, &done, number] {
            order.append(number);
            done.release();
            if (number % 100 == 0)
                throw number; // ends with its step
        }));
    }
    QVERIFY(done.tryAcquire(1000, 30000));
    for (int number = 0; number < 1000; ++number)
        QCOMPARE(order.at(number), number);
}

void FrameWorkerTest::anEndDropsWhatIsQueuedAndWaitsForTheStepThatRuns()
{
    FrameWorkers workers;
    QVERIFY(!workers.make());
    workers.open();
    const auto worker = workers.make();
    QSemaphore begun;
    QSemaphore goOn;
    std::atomic<bool> ended{false};
    std::atomic<int> later{0};
    const auto held = std::make_shared<int>();
    worker->post([&] {
        begun.release();
        goOn.acquire();
        ended = true;
    });
    worker->post([&later, held] { ++later; });
    QVERIFY(begun.tryAcquire(1, 30000));
    workers.close();
    QVERIFY(held.use_count() == 1); // dropped at once
    QVERIFY(!worker->post([&later] { ++later; }));
    QVERIFY(!workers.make());
    goOn.release();
    workers.waitForRunning();
    QVERIFY(ended);
    QCOMPARE(later.load(), 0);
    workers.open();
    QVERIFY(workers.make());
}

void FrameWorkerTest::theLastPointerMayGoWithinAStep()
{
    for (int round = 0; round < 50; ++round) {
        QSemaphore done;
        QSemaphore go;
        auto worker = std::make_shared<FrameWorker>();
        const std::weak_ptr<FrameWorker> weak = worker;
        FrameWorker &posted = *worker;
        posted.post([own = std::move(worker), &done, &go]() mutable {
            go.acquire();
            own.reset();
            done.release();
        });
        go.release();
        QVERIFY(done.tryAcquire(1, 30000));
        QVERIFY(weak.expired());
    }
}

QTEST_GUILESS_MAIN(FrameWorkerTest)
#include "FrameWorkerTest.moc"
