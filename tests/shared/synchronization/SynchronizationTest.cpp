#include <shared/synchronization/AtomicExchange.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/ScopedLock.h>
#include <shared/synchronization/SharedLockable.h>
#include <shared/synchronization/Singleton.h>

#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <set>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <support/Threads.h>
#include <utility>

using namespace Shared::Synchronization;

namespace {

class Owned : public SharedLockable<Owned>
{ };

using IntCreator = std::function<std::shared_ptr<int>()>;
using IntFactory = Shared::Factory<int, QString, std::shared_ptr<int>, IntCreator>;

IntCreator makes(int value)
{
    return [value] { return std::make_shared<int>(value); };
}

std::atomic<int> singletonsMade{0};

class OnlyOne : public Shared::Singleton<OnlyOne>
{
    friend class Shared::Singleton<OnlyOne>;
    OnlyOne() { ++singletonsMade; }
};

} // namespace

class SynchronizationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void depthAndSignals()
    {
        const Lockable lockable(nullptr, QMutex::Recursive);
        QSignalSpy locked(&lockable, &Lockable::locked);
        QSignalSpy unlocked(&lockable, &Lockable::unlocked);
        QCOMPARE(lockable.lock(), 1);
        QCOMPARE(lockable.lock(), 2);
        QCOMPARE(locked.count(), 1);
        QCOMPARE(lockable.unlock(), 1);
        QVERIFY(lockable.isLocked());
        QCOMPARE(unlocked.count(), 0);
        QCOMPARE(lockable.unlock(), 0);
        QCOMPARE(unlocked.count(), 1);
        QVERIFY(!lockable.isLocked());
    }

    void staysTakenWhileItsReleaseIsAnnounced()
    {
        const Lockable lockable(nullptr, QMutex::Recursive);
        QSemaphore entered;
        std::thread other;
        bool isFirst = true;
        connect(
            &lockable, &Lockable::unlocked, &lockable,
            [&] {
                if (!std::exchange(isFirst, false))
                    return;
                lockable.lock();
                lockable.unlock();
                other = std::thread([&] {
                    const ScopedLock lock(&lockable);
                    entered.release();
                });
                QVERIFY(!entered.tryAcquire(1, 200));
            },
            Qt::DirectConnection);
        lockable.lock();
        lockable.unlock();
        other.join();
        QVERIFY(entered.tryAcquire());

        // A slot may also keep the lock for its thread.
        disconnect(&lockable, &Lockable::unlocked, nullptr, nullptr);
        connect(&lockable, &Lockable::unlocked, &lockable, [&] {
            if (!std::exchange(isFirst, true))
                lockable.lock();
        });
        lockable.lock();
        QCOMPARE(lockable.unlock(), 0);
        QCOMPARE(lockable.lockLevel(), 1);
        other = std::thread([&] {
            const ScopedLock lock(&lockable);
            entered.release();
        });
        const bool isHeld = !entered.tryAcquire(1, 200);
        lockable.unlock();
        other.join();
        QVERIFY(isHeld);
    }

    void keepsThreadsApart()
    {
        constexpr int rounds = 20000;
        const QPair<QMutex::RecursionMode, int> ways[]
            = {{QMutex::Recursive, 1}, {QMutex::Recursive, 3}, {QMutex::NonRecursive, 1}};
        for (const auto &way : ways) {
            const int depth = way.second;
            const Lockable lockable(nullptr, way.first);
            int counter = 0; // guarded by the lock
            TestSupport::InThreads(4, [&](int) {
                for (int round = 0; round < rounds; ++round) {
                    for (int level = 0; level < depth; ++level)
                        lockable.lock();
                    ++counter;
                    for (int level = 0; level < depth; ++level)
                        lockable.unlock();
                }
            });
            QCOMPARE(counter, 4 * rounds);
            QCOMPARE(lockable.lockLevel(), 0);
        }
    }

    void scopedLock()
    {
        const ScopedLock nothing(static_cast<const Lockable *>(nullptr));
        const ScopedLock nothingShared{std::shared_ptr<const Lockable>()};
        auto shared = std::make_shared<Lockable>(nullptr, QMutex::Recursive);
        const std::weak_ptr<Lockable> watch = shared;
        {
            const ScopedLock lock{std::shared_ptr<const Lockable>(shared)};
            QVERIFY(shared->isLocked());
            shared.reset();
            QVERIFY(!watch.expired());
        }
        QVERIFY(watch.expired());
    }

    void sharedPointerOfItself()
    {
        const auto owned = std::make_shared<Owned>();
        QCOMPARE(owned->getSharedFromThis(), owned);

        const TestSupport::LogCapture log;
        const Owned alone;
        QCOMPARE(alone.getSharedFromThis(), nullptr);
        QCOMPARE(log.lines(),
                 QStringList{"WARNING Shareable::getSharedFromThis() smart pointer already deleted: "_s
                             + QLatin1String(std::bad_weak_ptr().what())});
    }

    void atomicExchange()
    {
        Shared::AtomicExchange<bool> exchange(false);
        QVERIFY(!exchange.commit());
        exchange.stage(false);
        exchange.stage(true);
        QVERIFY(exchange.commit());
    }

    void factoryKeepsTheFirst()
    {
        IntFactory factory;
        const QString key = "a"_s;
        QVERIFY(factory.registerProduct(key, makes(1)));
        QVERIFY(!factory.registerProduct(key, makes(2)));
        QCOMPARE(*factory.getCreator(key)(), 1);
        QCOMPARE(factory.getRegisteredProductIdentifier(), QList<QString>{key});
        QVERIFY(factory.isProductRegistered(key));
        factory.registerProduct("b", [&factory] {
            factory.registerProduct("c", makes(2)); // a creator may register
            return std::make_shared<int>(1);
        });
        factory.getCreator("b")();
        QVERIFY(factory.isProductRegistered("c"));
        QVERIFY(factory.unregisterProduct(key));
        QVERIFY(!factory.getCreator(key));
    }

    void singletonIsMadeOnce()
    {
        std::vector<OnlyOne *> seen(8);
        TestSupport::InThreads(8, [&seen](int number) { seen[size_t(number)] = OnlyOne::getInstance(); });
        QVERIFY(seen.front());
        QCOMPARE(std::set<OnlyOne *>(seen.begin(), seen.end()).size(), size_t(1));
        QCOMPARE(singletonsMade.load(), 1);
    }
};

QTEST_GUILESS_MAIN(SynchronizationTest)
#include "SynchronizationTest.moc"
