#include <notification/HandlerFunctions.h>
#include <notification/NotificationThreadPool.h>
#include <notification/utils/HandlerPool.h>

#include <QSemaphore>
#include <QtTest>

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
    return std::make_shared<Handle>(QStringLiteral("a"),
                                    [body = std::move(body)](const auto &...) { body(); });
}

void Start(HandlerPool &pool, const std::shared_ptr<Handle> &handle)
{
    pool.startHandler(handle, QStringLiteral("a"), DeletePoint::Done, true);
}

} // namespace

class HandlerPoolTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blockedHandlersAllRun();
    void growthEndsAtTheCeiling();
    void shortNotificationsNeedFewThreads();
    void shrinksOnlyWhenIdle();
    void exceptionInHandler();
    void descriptions();
    void stopDiscardsAndWaits();
    void switchOfTheOnePool();
};

void HandlerPoolTest::blockedHandlersAllRun()
{
    constexpr int Count = 500;
    HandlerPool pool(QStringLiteral("Blocked"), 2, false);
    std::atomic<int> begun = 0;
    QSemaphore lastBegan;
    std::vector<std::shared_ptr<Handle>> handles;
    for (int i = 0; i < Count; ++i) {
        handles.push_back(MakeHandle([&] {
            if (++begun == Count)
                lastBegan.release(Count);
            lastBegan.acquire();
        }));
        Start(pool, handles.back());
    }
    QVERIFY(pool.waitForDone(Patience)); // no further notification comes
    QCOMPARE(begun, Count);
    QVERIFY(pool.maxThreadCount() <= 512);
}

void HandlerPoolTest::growthEndsAtTheCeiling()
{
    const int count = HandlerPool::CeilingThreadCount() + 20;
    HandlerPool pool(QStringLiteral("Ceiling"), 2, false);
    std::atomic<int> begun = 0;
    QSemaphore goOn;
    std::vector<std::shared_ptr<Handle>> handles;
    for (int i = 0; i < count; ++i) {
        handles.push_back(MakeHandle([&] {
            ++begun;
            goOn.acquire();
        }));
        Start(pool, handles.back());
    }
    const auto letGo = qScopeGuard([&] { goOn.release(count); });
    QTRY_COMPARE_WITH_TIMEOUT(begun, HandlerPool::CeilingThreadCount(), Patience);
    QCOMPARE(pool.maxThreadCount(), HandlerPool::CeilingThreadCount());
    QCOMPARE(pool.getQueuedCount(), 20);
    goOn.release(20); // those that wait in the queue take the place of those that end
    QTRY_COMPARE_WITH_TIMEOUT(begun, count, Patience);
}

void HandlerPoolTest::shortNotificationsNeedFewThreads()
{
    constexpr int Count = 1000000;
    HandlerPool pool(QStringLiteral("Short"), 2, false);
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

void HandlerPoolTest::shrinksOnlyWhenIdle()
{
    constexpr int Count = 16;
    HandlerPool pool(QStringLiteral("Shrinking"), 2, false);
    QSemaphore begun;
    QSemaphore goOn;
    std::vector<std::shared_ptr<Handle>> handles;
    for (int i = 0; i < Count; ++i) {
        handles.push_back(MakeHandle([&] {
            begun.release();
            goOn.acquire();
        }));
        Start(pool, handles.back());
    }
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

void HandlerPoolTest::exceptionInHandler()
{
    const TestSupport::LogCapture log;
    HandlerPool pool(QStringLiteral("Throwing"), 2, false);
    const auto handle = MakeHandle([] { throw 1; });
    Start(pool, handle);
    QVERIFY(pool.waitForDone(Patience));
    QCOMPARE(log.lines(), QStringList(QStringLiteral("CRITICAL HandlerRunnable::run() catched exception")));
    handle->invalidate(); // the mutex was given back
}

void HandlerPoolTest::descriptions()
{
    auto handle = MakeHandle([] {});
    const utils::HandlerRunnable<DeleteHandler> runnable(handle, QStringLiteral("x"), DeletePoint::Done,
                                                         true);
    QCOMPARE(runnable.getDescription(),
             QStringLiteral("Handler runnable taks with path=a uuid=%1").arg(handle->getUuid()));
    handle.reset();
    QCOMPARE(runnable.getDescription(),
             QStringLiteral("Handler runnable taks with path=<nullptr> uuid=<nullptr>"));
}

void HandlerPoolTest::stopDiscardsAndWaits()
{
    HandlerPool pool(QStringLiteral("Stopping"), 2, false);
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

void HandlerPoolTest::switchOfTheOnePool()
{
    QCOMPARE(NotificationThreadPool().getName(), QStringLiteral("NotificationThreadPool"));
    QVERIFY(NotificationThreadPool().isRunning());
    setNotificationPoolRunning(false);
    QVERIFY(!NotificationThreadPool().isRunning());
    setNotificationPoolRunning(true);
    QVERIFY(NotificationThreadPool().isRunning());
}

QTEST_GUILESS_MAIN(HandlerPoolTest)
#include "HandlerPoolTest.moc"
