#include "TestTasks.h"

#include <notification/utils/NotificationProvider.h>
#include <notification/utils/NotifyExaminers.h>
#include <notification/utils/PoolWait.h>

#include <QtTest>

#include <support/Literals.h>
#include <thread>

using namespace TestSupport;
using utils::NotificationProvider;
using Handle = NotificationProvider::HandlePointer;

// One provider with delete handlers at "a", which are told of by tell().
class NotificationHandleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setNotificationPoolRunning(true);
        provider = std::make_unique<NotificationProvider>();
        calls = 0;
    }

    void cleanup() { setNotificationPoolRunning(false); }

    void droppingEndsTheRegistration()
    {
        auto handle = listen([this] { ++calls; });
        QCOMPARE(handle->getPath(), "a"_s);
        QCOMPARE(handle->getHandleType(), 1);
        tell();
        QVERIFY(quiet());
        QCOMPARE(calls, 1);
        handle.reset();
        QVERIFY(provider->getDeleteRegistration()->isEmpty());
        tell();
        QVERIFY(quiet());
        QCOMPARE(calls, 1);
    }

    void disabledHandlerHearsNothing()
    {
        const auto handle = listen([this] { ++calls; });
        QVERIFY(handle->setEnabled(false));
        QVERIFY(handle->isValid() && !handle->isEnabled());
        tell();
        QVERIFY(handle->setEnabled(true));
        tell();
        QVERIFY(quiet());
        QCOMPARE(calls, 1);
        handle->invalidate();
        QVERIFY(!handle->isValid() && !handle->isEnabled() && !handle->setEnabled(true));
        QVERIFY(handle->getPath().isEmpty() && handle->getUuid().isEmpty());
        QCOMPARE(handle->getHandleType(), 0);
    }

    void queuedCallsOfAnInvalidHandleAreSkipped()
    {
        QSemaphore begun;
        QSemaphore goOn;
        const auto handle = listen([&] {
            ++calls;
            begun.release();
            goOn.acquire();
        });
        for (int i = 0; i < 10; ++i)
            tell();
        QVERIFY(begun.tryAcquire(1, Patience));
        QVERIFY(provider->unregisterDeleteHandler(handle->getUuid())); // does not wait for the handler
        QVERIFY(!handle->isValid());
        QVERIFY(!provider->unregisterDeleteHandler(handle->getUuid()));
        goOn.release(10);
        QVERIFY(quiet());
        QCOMPARE(calls, 1);
    }

    void invalidateWaitsForTheRunningHandler()
    {
        QSemaphore begun;
        QSemaphore goOn;
        std::atomic<bool> ended = false;
        const auto handle = listen([&] {
            begun.release();
            goOn.acquire();
            ended = true;
        });
        tell();
        QVERIFY(begun.tryAcquire(1, Patience));
        std::atomic<bool> endedAtReturn = false;
        std::thread ender([&] {
            handle->invalidate();
            endedAtReturn = ended.load();
        });
        QTRY_VERIFY_WITH_TIMEOUT(!handle->isValid(), Patience);
        goOn.release();
        ender.join();
        QVERIFY(endedAtReturn);
    }

    void handlerEndsItsOwnHandle()
    {
        Handle handle;
        std::weak_ptr<int> captured;
        {
            auto value = std::make_shared<int>();
            captured = value;
            handle = listen([&, value] {
                handle.reset(); // the function that runs and the mutex that is held stay to the end
                ++calls;
                *value = 1;
            });
        }
        tell();
        QVERIFY(quiet());
        QCOMPARE(calls, 1);
        QVERIFY(captured.expired());
        QVERIFY(provider->getDeleteRegistration()->isEmpty());
    }

    void handlersEndEachOther()
    {
        for (int round = 0; round < 20; ++round) {
            QSemaphore begun;
            Handle first;
            Handle second;
            const auto bothRun = [&begun] {
                begun.release();
                while (begun.available() < 2)
                    std::this_thread::yield();
            };
            first = listen([&] {
                bothRun();
                second->invalidate();
                ++calls;
            });
            second = listen([&] {
                bothRun();
                first.reset();
                ++calls;
            });
            tell();
            QVERIFY(quiet());
            QCOMPARE(calls, 2 * (round + 1));
            QVERIFY(!second->isValid());
        }
    }

    void handlerUpdatesWhileItIsEnded()
    {
        FunctionPool pool;
        QSemaphore begun;
        Handle handle;
        handle = listen([&] {
            begun.release();
            while (handle->isValid())
                std::this_thread::yield();
            // Another thread waits for this handler by now; a task that tells this very handler must not.
            const auto observer = pool.run([this](UpdateObserver &reports) {
                tell();
                reports.report({UpdatePoint::Done, UpdateResult::Ok});
            });
            calls += utils::WaitForSuccess(pool, observer);
        });
        tell();
        QVERIFY(begun.tryAcquire(1, Patience));
        handle->invalidate();
        QCOMPARE(calls, 1);
    }

    void handlerRegistersAndUnregisters()
    {
        Handle outer;
        Handle inner;
        outer = listen([&] {
            inner = listen([this] { ++calls; });
            calls += provider->unregisterDeleteHandler(outer->getUuid());
            tell();
        });
        tell();
        QVERIFY(quiet());
        QCOMPARE(calls, 2);
    }

private:
    Handle listen(std::function<void()> body)
    {
        return provider->registerDeleteHandler(
            "a"_s, [body = std::move(body)](const auto &...) { body(); }, DeletePoint::Done);
    }
    void tell() { utils::NotifyExaminers(provider->getDeleteRegistration(), "a"_s, DeletePoint::Done, true); }
    bool quiet() { return NotificationThreadPool().waitForDone(Patience); }

    std::unique_ptr<NotificationProvider> provider;
    std::atomic<int> calls;
};

QTEST_GUILESS_MAIN(NotificationHandleTest)
#include "NotificationHandleTest.moc"
