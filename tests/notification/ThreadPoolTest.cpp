#include "TestTasks.h"

#include <notification/utils/PoolWait.h>

#include <QtTest>

#include <support/Literals.h>
#include <support/LogCapture.h>
#include <thread>
#include <vector>

using namespace TestSupport;
using Tessellum::Notification::utils::WaitForSuccess;
using Tessellum::Notification::utils::WaitForTask;

namespace {

// Occupies threads of a pool until it is destroyed or told to let go.
class Blockade
{
public:
    Blockade(FunctionPool &pool, int heldThreads)
        : threads(heldThreads)
    {
        for (int i = 0; i < threads; ++i) {
            pool.run([beginning = begun, ending = end](UpdateObserver &) {
                beginning->release();
                ending->acquire();
            });
        }
    }
    ~Blockade() { letGo(); }
    bool holds() { return begun->tryAcquire(threads, Patience); }
    void letGo() { end->release(threads); }

private:
    const int threads;
    const std::shared_ptr<QSemaphore> begun = std::make_shared<QSemaphore>();
    const std::shared_ptr<QSemaphore> end = std::make_shared<QSemaphore>();
};

} // namespace

class ThreadPoolTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsNothing()
    {
        FunctionPool stopped(true);
        QVERIFY(!stopped.isRunning());
        QVERIFY(!stopped.run(ReportDone));
        QVERIFY(!WaitForSuccess(stopped, stopped.run(ReportDone)));
        stopped.start();
        QVERIFY(WaitForSuccess(stopped, stopped.run(ReportDone)));
        const auto copy = stopped.clone("Copy");
        QCOMPARE(copy->getName(), "Copy"_s);
        QVERIFY(WaitForSuccess(
            *copy,
            copy->startUpdateTask({}, QVariant::fromValue<UpdateBody>(ReportDone), UpdatePoint::Done)));
        QVERIFY(!stopped.startCreateTask({}, QString(), QVariant(), CreatePoint::All));

        ThreadPool refusing(
            "Refusing"_s, {}, {}, [](const auto &...) { return std::unique_ptr<DeleteTask>(); }, 2, false);
        QVERIFY(!refusing.startDeleteTask({}, QString(), QVariant(), DeletePoint::All));
    }

    void raisesTheRequestedSize()
    {
        Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::debug);
        const LogCapture log;
        const ThreadPool pool("Small"_s, 1, false);
        Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::log);
        const int minimum = qMax(2, QThread::idealThreadCount());
        QCOMPARE(pool.maxThreadCount(), minimum);
        QCOMPARE(
            log.lines(),
            QStringList(
                "DEBUG ThreadPool::ThreadPool(Small) changing requested minimum thread size from 1 to %1"_s
                    .arg(minimum)));
    }

    void growsUnderLoadAndShrinksAgain()
    {
        FunctionPool pool;
        const int cap = qMax(8, pool.maxThreadCount());
        {
            Blockade blockade(pool, cap);
            QVERIFY(blockade.holds());
            const Blockade queued(pool, 4 * cap);
            QCOMPARE(pool.maxThreadCount(), cap);
            blockade.letGo();
        }
        QVERIFY(pool.waitForDone(Patience));
        // Half of the threads go with each second of low load, measured when a task comes.
        QTRY_VERIFY_WITH_TIMEOUT(WaitForSuccess(pool, pool.run(ReportDone))
                                     && pool.maxThreadCount() == ThreadPool::MinimumThreadCount(),
                                 Patience);
    }

    void tasksBeginInTheirOrder()
    {
        FunctionPool pool;
        QMutex mutex;
        QList<int> order;
        Blockade blockade(pool, ThreadPool::MaximumThreadCount());
        QVERIFY(blockade.holds());
        pool.setMaxThreadCount(1);
        for (int i = 0; i < 100; ++i) {
            pool.run([&, i](UpdateObserver &) {
                const QMutexLocker locker(&mutex);
                order.append(i);
            });
            pool.setMaxThreadCount(1);
        }
        blockade.letGo();
        QVERIFY(pool.waitForDone(Patience));
        QCOMPARE(order.size(), 100);
        QVERIFY(std::is_sorted(order.begin(), order.end()));
    }

    void waiterRunsItsQueuedTask()
    {
        FunctionPool pool;
        pool.setMaxThreadCount(ThreadPool::MaximumThreadCount());
        Blockade blockade(pool, ThreadPool::MaximumThreadCount() - 1);
        QVERIFY(blockade.holds());
        Qt::HANDLE waiter = nullptr;
        Qt::HANDLE runner = nullptr;
        const auto outer = pool.run([&](UpdateObserver &observer) {
            waiter = QThread::currentThreadId();
            const Blockade others(pool, 3); // ahead in the queue, yet it is the inner task that is run
            const auto inner = pool.run([&](UpdateObserver &reports) {
                runner = QThread::currentThreadId();
                reports.report({UpdatePoint::Done, UpdateResult::Ok});
            });
            observer.report({UpdatePoint::Done,
                             WaitForSuccess(pool, inner) ? UpdateResult::Ok : UpdateResult::ApplyFailed});
            blockade.letGo();
        });
        QVERIFY(WaitForSuccess(pool, outer));
        QVERIFY(waiter);
        QCOMPARE(runner, waiter);
        pool.stopAndWait();
    }

    void manyNestedTasks()
    {
        constexpr int Count = 10000;
        FunctionPool pool;
        QMutex mutex;
        QSet<Qt::HANDLE> threads;
        std::vector<std::shared_ptr<UpdateObserver>> observers;
        for (int i = 0; i < Count; ++i) {
            observers.push_back(pool.run([&](UpdateObserver &observer) {
                {
                    const QMutexLocker locker(&mutex);
                    threads.insert(QThread::currentThreadId());
                }
                const bool done = WaitForSuccess(pool, pool.run(ReportDone));
                observer.report({UpdatePoint::Done, done ? UpdateResult::Ok : UpdateResult::ApplyFailed});
            }));
        }
        for (const auto &observer : observers)
            QVERIFY(WaitForSuccess(pool, observer));
        QVERIFY(pool.maxThreadCount() <= ThreadPool::MaximumThreadCount());
        QVERIFY2(threads.size() <= 2 * ThreadPool::MaximumThreadCount(), QByteArray::number(threads.size()));
        QCOMPARE(pool.getQueuedCount(), 0);
    }

    void doneIncludesWhatOthersTookOver()
    {
        FunctionPool pool;
        FunctionPool other;
        pool.setMaxThreadCount(0); // one thread stays, and twice nothing does not grow
        Blockade blockade(pool, 1);
        QVERIFY(blockade.holds());
        QSemaphore begun;
        QSemaphore goOn;
        other.run([&](UpdateObserver &) {
            WaitForTask(pool, pool.run([&](UpdateObserver &) {
                begun.release();
                goOn.acquire();
            }));
        });
        const auto letGo = qScopeGuard([&] { goOn.release(); });
        const bool hasBegun = begun.tryAcquire(1, Patience); // on the thread of the other pool
        blockade.letGo();
        QVERIFY(hasBegun);
        QTRY_COMPARE_WITH_TIMEOUT(pool.activeThreadCount(), 0, Patience);
        QVERIFY(!pool.waitForDone(20));
        goOn.release();
        QVERIFY(pool.waitForDone());
    }

    void stopEndsQueuedAndNestedWaits()
    {
        FunctionPool pool;
        const int count = ThreadPool::MaximumThreadCount();
        QSemaphore begun;
        QSemaphore allBegan;
        QSemaphore nestedStarted;
        std::vector<std::shared_ptr<UpdateObserver>> outer;
        std::atomic<int> nestedSuccesses = 0;
        QSemaphore goOn;
        for (int i = 0; i < count; ++i) {
            outer.push_back(pool.run([&](UpdateObserver &observer) {
                begun.release();
                allBegan.acquire(); // no thread is left for the nested ones
                const auto nested = pool.run(ReportDone);
                nestedStarted.release();
                goOn.acquire();
                if (nested
                    && nested->waitForResult()) // a bare wait, which does not take the task off the queue
                    ++nestedSuccesses;
                observer.report({UpdatePoint::Done, UpdateResult::Ok});
            }));
        }
        QVERIFY(begun.tryAcquire(count, Patience));
        allBegan.release(count);
        QVERIFY(nestedStarted.tryAcquire(count, Patience));
        const auto discarded = pool.run(ReportDone);
        std::thread stopper([&] { pool.stopAndWait(); });
        const auto joinStopper = qScopeGuard([&] { stopper.join(); });
        discarded->wait();
        goOn.release(count);
        for (const auto &observer : outer)
            QVERIFY(observer->waitForResult());
        QVERIFY(!discarded->waitForResult());
        QCOMPARE(nestedSuccesses, 0);
        QCOMPARE(pool.getQueuedCount(), 0);
    }

    void stopWithALimitAndFromItsOwnThread()
    {
        FunctionPool pool;
        Blockade blockade(pool, 1);
        QVERIFY(blockade.holds());
        QVERIFY(!pool.stopAndWait(10));
        blockade.letGo();
        QVERIFY(pool.stopAndWait(Patience));
        pool.start();
        bool stopped = true;
        pool.run([&](UpdateObserver &) { stopped = pool.stopAndWait(); })->wait();
        QVERIFY(!stopped);
        QVERIFY(pool.stopAndWait());
        QVERIFY(!ThreadPool::Current());
    }

    void nothingStartsBehindAStop()
    {
        FunctionPool pool;
        std::atomic<bool> atRest = false;
        std::atomic<int> late = 0;
        std::atomic<bool> end = false;
        std::vector<std::thread> starters;
        for (int i = 0; i < 3; ++i) {
            starters.emplace_back([&] {
                while (!end) {
                    const auto observer = pool.run([&](UpdateObserver &) { late += atRest; });
                    if (observer)
                        observer->wait(); // each one ends, run or discarded
                }
            });
        }
        for (int i = 0; i < 200; ++i) {
            QVERIFY(pool.stopAndWait());
            atRest = true;
            std::this_thread::yield();
            atRest = false;
            pool.start();
        }
        end = true;
        for (auto &starter : starters)
            starter.join();
        QCOMPARE(late, 0);
        QVERIFY(pool.stopAndWait());
        QCOMPARE(pool.getQueuedCount(), 0);
    }

    void capturedValuesGoWithTheTask()
    {
        FunctionPool pool;
        auto value = std::make_shared<int>();
        const std::weak_ptr<int> watch = value;
        pool.run([value = std::move(value)](UpdateObserver &) {});
        QVERIFY(pool.waitForDone(Patience));
        QVERIFY(watch.expired()); // although the wrapper waits for the next clean-up
    }
};

QTEST_GUILESS_MAIN(ThreadPoolTest)
#include "ThreadPoolTest.moc"
