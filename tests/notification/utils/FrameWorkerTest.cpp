#include <notification/utils/FrameQueue.h>

#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <stdexcept>
#include <support/LogCapture.h>

using Tessellum::Notification::utils::FrameQueue;
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
    void everyPeerHasItsTurn();
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

void FrameWorkerTest::everyPeerHasItsTurn()
{
    using Queue = FrameQueue<QString>;
    const auto worker = std::make_shared<FrameWorker>();
    auto queue = std::make_shared<Queue>(worker, 1000);
    QSemaphore begun;
    QSemaphore gate;
    QSemaphore done;
    QStringList order; // the worker's, and read when it is done
    const auto add = [&](const QString &peer, qint64 bytes, const QString &name) {
        return queue->add(peer, bytes, [&order, &done, name] {
            order.append(name);
            done.release();
            if (name == "a0")
                throw std::runtime_error("first");
        });
    };
    const auto hold = [&] {
        QCOMPARE(queue->add("x", 1, [&] { begun.release(), gate.acquire(); }), Queue::Added::Queued);
        QVERIFY(begun.tryAcquire(1, Patience));
    };
    hold();
    for (int i = 0; i < 10; ++i)
        QCOMPARE(add("a", 100, "a" + QString::number(i)), Queue::Added::Queued);
    QCOMPARE(add("a", 1, "full"), Queue::Added::Full);
    for (const auto *peer : {"dropped", "left", "left too"})
        QCOMPARE(add(peer, 600, peer), Queue::Added::Queued);
    QCOMPARE(add("b", 1000, "b0"), Queue::Added::Queued);
    QCOMPARE(add("c", 300, "c"), Queue::Added::Full); // its share of all that waits is less
    queue->drop("dropped");
    queue->leave("left");
    queue->leave("left too"); // too much together
    QVERIFY(worker->post([&] { order.append("other"); }));
    gate.release();
    QVERIFY(done.tryAcquire(12, Patience));
    QCOMPARE(order.mid(0, 6), QStringList({"a0", "other", "left", "b0", "a1", "a2"}));
    QCOMPARE(order.size(), 13);
    QCOMPARE(order.last(), QString("a9"));

    // Its end and that of the worker drop what waits.
    hold();
    const auto held = std::make_shared<int>();
    QCOMPARE(queue->add("a", 1, [held] {}), Queue::Added::Queued);
    queue = std::make_shared<Queue>(worker, 1000);
    gate.release();
    QTRY_COMPARE_WITH_TIMEOUT(held.use_count(), 1L, Patience);
    hold();
    QCOMPARE(queue->add("a", 1, [held] {}), Queue::Added::Queued);
    worker->end();
    QCOMPARE(queue->add("a", 1, [held] {}), Queue::Added::Ended);
    QCOMPARE(held.use_count(), 1L);
    gate.release();
    worker->waitForRunning();
}

QTEST_GUILESS_MAIN(FrameWorkerTest)
#include "FrameWorkerTest.moc"
