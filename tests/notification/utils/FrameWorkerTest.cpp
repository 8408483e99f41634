#include <notification/utils/FrameWorker.h>

#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <stdexcept>
#include <support/LogCapture.h>

using Tessellum::Notification::utils::FrameWorker;
using Tessellum::Notification::utils::FrameWorkers;

namespace {

constexpr int Patience = 60000;

} // namespace

class FrameWorkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stepsRunInTheirOrderAndOneAtATime();
    void theEndDropsWhatIsQueued();
    void aStepMayDropTheLastPointer();
    void aStopWaitsForTheStepThatRuns();
};

void FrameWorkerTest::stepsRunInTheirOrderAndOneAtATime()
{
    constexpr int number = 1000;
    const TestSupport::LogCapture log;
    FrameWorker worker;
    QList<int> order; // without a lock: the steps are the only ones to use it
    std::atomic<int> running = 0;
    std::atomic<bool> overlap = false;
    QSemaphore done;
    for (int i = 0; i < number; ++i) {
        QVERIFY(worker.post([&, i] {
            overlap = overlap || ++running > 1;
            order.append(i);
            --running;
            done.release();
            if (i == number / 2)
                throw std::runtime_error("half");
        }));
    }
    QVERIFY(done.tryAcquire(number, Patience));
    for (int i = 0; i < number; ++i)
        QCOMPARE(order.at(i), i);
    QVERIFY(!overlap);
    QCOMPARE(log.lines().filter("CRITICAL FrameWorker::run() catched exception").size(), 1);
}

void FrameWorkerTest::theEndDropsWhatIsQueued()
{
    FrameWorker worker;
    QSemaphore begun;
    QSemaphore gate;
    const auto held = std::make_shared<int>();
    std::atomic<int> further = 0;
    QVERIFY(worker.post([&] {
        begun.release();
        gate.acquire();
    }));
    QVERIFY(worker.post([&, held] { ++further; }));
    QVERIFY(begun.tryAcquire(1, Patience));
    worker.end(); // does not wait
    QCOMPARE(held.use_count(), 1L); // the dropped step is freed
    QVERIFY(!worker.post([&] { ++further; }));
    gate.release();
    worker.waitForRunning();
    QCOMPARE(further.load(), 0);
}

void FrameWorkerTest::aStepMayDropTheLastPointer()
{
    const auto steps = std::make_shared<QSemaphore>();
    auto worker = std::make_shared<FrameWorker>();
    const std::weak_ptr<FrameWorker> left = worker;
    const auto gate = std::make_shared<QSemaphore>();
    QVERIFY(worker->post([steps, gate, own = worker]() mutable {
        gate->acquire();
        own.reset();
        steps->release();
    }));
    QVERIFY(worker->post([steps] { steps->release(); }));
    worker.reset();
    gate->release();
    QVERIFY(steps->tryAcquire(1, Patience));
    QTRY_VERIFY_WITH_TIMEOUT(left.expired(), Patience);
    // Its thread ends on a thread of the global pool; a step that was queued behind never ran.
    QVERIFY(QThreadPool::globalInstance()->waitForDone(Patience));
    QCOMPARE(steps->available(), 0);
}

void FrameWorkerTest::aStopWaitsForTheStepThatRuns()
{
    FrameWorkers workers;
    QVERIFY(!workers.make());
    workers.open();
    const auto worker = workers.make();
    QSemaphore begun;
    QSemaphore gate;
    std::atomic<bool> over = false;
    QVERIFY(worker->post([&] {
        begun.release();
        gate.acquire();
        over = true;
    }));
    QVERIFY(begun.tryAcquire(1, Patience));
    workers.close();
    QVERIFY(!workers.make());
    QVERIFY(!worker->post([] {}));
    QVERIFY(!over);
    gate.release();
    workers.waitForRunning();
    QVERIFY(over);
    workers.open();
    QVERIFY(workers.make());
}

QTEST_GUILESS_MAIN(FrameWorkerTest)
#include "FrameWorkerTest.moc"
