#include <notification/HandlerFunctions.h>
#include <notification/NotificationThreadPool.h>
#include <notification/utils/HandlerPool.h>

#include <QSemaphore>
#include <QtTest>

#include <support/Literals.h>
#include <support/LogCapture.h>
#include <thread>
#include <vector>

using namespace Tessellum::Notification;
using utils::HandlerPool;
using Handle = utils::NotificationHandle<DeleteHandler>;

namespace {

constexpr int Patience = 60000; // milliseconds; reached on failure alone

std::shared_ptr<Handle> MakeHandle(std::function<void()> body)
{
    return std::make_shared<Handle>("a"_s, [body = std::move(body)](const auto &...) { body(); });
}

void Start(HandlerPool &pool, const std::shared_ptr<Handle> &handle)
{
    pool.startHandler(handle, "a"_s, DeletePoint::Done, true);
}

// Each with a handle of its own, or they would wait for one another.
std::vector<std::shared_ptr<Handle>> StartMany(HandlerPool &pool, int count,
                                               const std::function<void()> &body)
{
    std::vector<std::shared_ptr<Handle>> handles;
    for (int i = 0; i < count; ++i) {
        handles.push_back(MakeHandle(body));
        Start(pool, handles.back());
    }
    return handles;
}

} // namespace

class HandlerPoolTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blockedHandlersAllRun()
    {
        constexpr int Count = 500;
        HandlerPool pool("Blocked"_s, 2, false);
        std::atomic<int> begun = 0;
        QSemaphore lastBegan;
        const auto handles = StartMany(pool, Count, [&] {
            if (++begun == Count)
                lastBegan.release(Count);
            lastBegan.acquire();
        });
        QVERIFY(pool.waitForDone(Patience)); // no further notification comes
        QCOMPARE(begun, Count);
        QVERIFY(pool.maxThreadCount() <= 512);
    }

    void growthEndsAtTheCeiling()
    {
        const int count = HandlerPool::CeilingThreadCount() + 20;
        HandlerPool pool("Ceiling"_s, 2, false);
        std::atomic<int> begun = 0;
        QSemaphore goOn;
        const auto handles = StartMany(pool, count, [&] {
            ++begun;
            goOn.acquire();
        });
        const auto letGo = qScopeGuard([&] { goOn.release(count); });
        QTRY_COMPARE_WITH_TIMEOUT(begun, HandlerPool::CeilingThreadCount(), Patience);
        QCOMPARE(pool.maxThreadCount(), HandlerPool::CeilingThreadCount());
        QCOMPARE(pool.getQueuedCount(), 20);
        goOn.release(20); // those that wait in the queue take the place of those that end
        QTRY_COMPARE_WITH_TIMEOUT(begun, count, Patience);
    }

    void shortNotificationsNeedFewThreads()
    {
        constexpr int Count = 1000000;
        HandlerPool pool("Short"_s, 2, false);
        std::atomic<int> calls = 0;
        const auto handle = MakeHandle([&] { ++calls; });
        int most = 0;
        for (int i = 0; i < Count; ++i) {
            Start(pool, handle);
            most = qMax(most, pool.maxThreadCount());
        }
        while (!pool.waitForDone(1))
            most = qMax(most, pool.maxThreadCount());
        QCOMPARE(calls, Count);
        QVERIFY2(most <= 64, QByteArray::number(most));
    }

    void shrinksOnlyWhenIdle()
    {
        constexpr int Count = 16;
        HandlerPool pool("Shrinking"_s, 2, false);
        QSemaphore begun;
        QSemaphore goOn;
        const auto handles = StartMany(pool, Count, [&] {
            begun.release();
            goOn.acquire();
        });
        const auto letGo = qScopeGuard([&] { goOn.release(Count); });
        QVERIFY(begun.tryAcquire(Count, Patience));
        const int grown = pool.maxThreadCount();
        QVERIFY(grown >= Count);

        const auto quick = MakeHandle([&] { begun.release(); });
        Start(pool, quick); // nothing is queued, yet all the others block
        QVERIFY(begun.tryAcquire(1, Patience));
        QVERIFY(pool.maxThreadCount() >= grown);
        goOn.release(Count);
        QVERIFY(pool.waitForDone(Patience));
        Start(pool, quick);
        QCOMPARE(pool.maxThreadCount(), ThreadPool::MinimumThreadCount());
    }

    void exceptionInHandler()
    {
        const TestSupport::LogCapture log;
        HandlerPool pool("Throwing"_s, 2, false);
        const auto handle = MakeHandle([] { throw 1; });
        Start(pool, handle);
        QVERIFY(pool.waitForDone(Patience));
        QCOMPARE(log.lines(), QStringList("CRITICAL HandlerRunnable::run() catched exception"_s));
        handle->invalidate(); // the mutex was given back
    }

    void descriptions()
    {
        auto handle = MakeHandle([] {});
        const utils::HandlerRunnable<DeleteHandler> runnable(handle, "x"_s, DeletePoint::Done, true);
        QCOMPARE(runnable.getDescription(),
                 "Handler runnable taks with path=a uuid=%1"_s.arg(handle->getUuid()));
        handle.reset();
        QCOMPARE(runnable.getDescription(), "Handler runnable taks with path=<nullptr> uuid=<nullptr>"_s);
    }

    void stopDiscardsAndWaits()
    {
        HandlerPool pool("Stopping"_s, 2, false);
        std::atomic<int> calls = 0;
        bool stoppedInside = true;
        QSemaphore begun;
        QSemaphore goOn;
        const auto running = MakeHandle([&] {
            begun.release();
            goOn.acquire();
            stoppedInside = pool.stopAndWait();
        });
        Start(pool, running);
        QVERIFY(begun.tryAcquire(1, Patience));
        const auto other = MakeHandle([&] { ++calls; });
        for (int i = 0; i < 1000; ++i)
            Start(pool, other);
        std::thread stopper([&] { pool.stopAndWait(); });
        QTRY_VERIFY_WITH_TIMEOUT(!pool.isRunning(), Patience);
        goOn.release();
        stopper.join();
        QVERIFY(!stoppedInside);
        const int before = calls;
        Start(pool, other);
        pool.start();
        Start(pool, other);
        QTRY_COMPARE_WITH_TIMEOUT(calls, before + 1, Patience);
    }
};

QTEST_GUILESS_MAIN(HandlerPoolTest)
#include "HandlerPoolTest.moc"
