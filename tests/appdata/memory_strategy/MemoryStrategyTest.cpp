#include "../support/RunningDataRepository.h"

#include <appdata/memory_strategy/MemoryStrategyRepository.h>
#include <appdata/memory_strategy/MemoryStrategyWrapper.h>

#include <QtTest>

#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>

using namespace TestSupport;
using namespace Tessellum::AppData::MemoryStrategies;
using Data::Entries::Entry;
using Interfaces::MemoryStrategyInterface;
using Tessellum::Notification::utils::MakeEventThreadObject;

namespace {

// One of an application, which fails in all that it is asked.
class ThrowingStrategy : public MemoryStrategy
{
public:
    ThrowingStrategy()
        : MemoryStrategy("throwing", "id")
    { }
    bool configure(const QString &) override { throw std::runtime_error("configure"); }
    qint32 evaluate(const QString &) override { throw std::runtime_error("evaluate"); }

protected:
    void handleElementAdded(const QString &) override { throw std::runtime_error("added"); }
};

// One of an application, which has another thread ask the entry while it hears of an element.
class AskingStrategy : public MemoryStrategy
{
public:
    explicit AskingStrategy(const std::weak_ptr<const Entry> &strategyEntry)
        : MemoryStrategy("asking", "id")
        , entry(strategyEntry)
    { }
    qint32 evaluate(const QString &) override { return NoDecision; }

    static inline std::atomic<int> answers = 0;

protected:
    void handleElementAdded(const QString &added) override
    {
        // Left behind where it hangs, so that the test can fail.
        const auto answer = std::make_shared<std::promise<bool>>();
        auto future = answer->get_future();
        std::thread([answer, asked = entry.lock(), added] {
            QMutex &pairs = RunningDataRepository::provider().pairMutex();
            const bool isFree = pairs.tryLock(5000);
            if (isFree)
                pairs.unlock();
            const auto element = isFree ? asked->getQueryInterface()->getElementById(added) : nullptr;
            answer->set_value(element && element->getQueryInterface()->isActive());
        }).detach();
        if (future.wait_for(std::chrono::seconds(20)) == std::future_status::ready && future.get())
            ++answers;
    }

private:
    const std::weak_ptr<const Entry> entry;
};

} // namespace

class MemoryStrategyTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RunningDataRepository> run;
    std::shared_ptr<Entry> entry;

    void add(quint64 timestamp) { QVERIFY(run->create(entry, run->value(timestamp, 1))); }
    // The positions of the loaded elements.
    QList<int> loaded()
    {
        QList<int> positions;
        for (quint64 index = 0; index < entry->getNumberOfChildren(); ++index) {
            if (run->element(entry, index)->getLoadStatus() == LoadStatus::Loaded)
                positions.append(int(index));
        }
        return positions;
    }
    auto strategies() { return entry->getMemoryStrategyInterface(); }
    qint32 evaluate(quint64 index)
    {
        return entry->getMemoryStrategyWrapper()->evaluate(run->element(entry, index)->getUuid());
    }

private Q_SLOTS:
    void init()
    {
        run = std::make_unique<RunningDataRepository>();
        entry = run->addEntry(run->record("values"));
        QVERIFY(entry);
    }
    void cleanup()
    {
        entry.reset();
        run.reset();
    }

    void theLastStay()
    {
        for (quint64 i = 0; i < 5; ++i)
            add(i);
        QCOMPARE(loaded().size(), 5);
        QVERIFY(strategies()->installMemoryStrategy("last", R"({"limit":3})"));
        QTRY_COMPARE(loaded(), (QList<int>{2, 3, 4}));
        add(0); // the order of adding counts, not the time stamp
        QTRY_COMPARE(loaded(), (QList<int>{3, 4, 5}));
    }

    void aTimeRangeMovesWithTheEntry()
    {
        for (const quint64 timestamp : {100, 90, 80})
            add(timestamp);
        QVERIFY(strategies()->installMemoryStrategy("timespan",
                                                    R"({"from":{"value":10,"type":"relative_from_end"}})"));
        QTRY_COMPARE(loaded(), (QList<int>{0, 1}));
        add(105);
        QTRY_COMPARE(loaded(), (QList<int>{0, 3}));

        // A changed time stamp moves the range as well.
        Data::Elements::ElementUpdateData later;
        later.setTimestamp(112);
        QVERIFY(run->update(run->element(entry, 3), later));
        QTRY_COMPARE(loaded(), (QList<int>{3}));
    }

    void anOverwrittenElementStaysWithinItsStrategy()
    {
        for (quint64 i = 0; i < 3; ++i)
            add(i);
        QVERIFY(strategies()->installMemoryStrategy("time", R"({"from":{"value":100},"to":{"value":200}})"));
        QTRY_COMPARE(loaded(), QList<int>());
        QVERIFY(run->update(run->element(entry, 1), run->value(150, 2)));
        QCOMPARE(loaded(), QList<int>{1});
        QVERIFY(run->update(run->element(entry, 1), run->value(250, 2)));
        QTRY_COMPARE(loaded(), QList<int>());
    }

    void manyAddsCostOneEmission()
    {
        constexpr int number = 2000;
        constexpr int limit = 500;
        QVERIFY(strategies()->installMemoryStrategy("last", QStringLiteral(R"({"limit":%1})").arg(limit)));
        const auto wrapper = entry->getMemoryStrategyWrapper();
        const auto emissions = std::make_shared<std::atomic<int>>(0);
        const auto gate = std::make_shared<QSemaphore>();
        const auto isClosed = std::make_shared<QSemaphore>();
        // The event thread does not come to it before all are added.
        QMetaObject::invokeMethod(
            wrapper.get(),
            [gate, isClosed] {
                isClosed->release();
                gate->tryAcquire(1, StorageTwin::Patience);
            },
            Qt::QueuedConnection);
        QVERIFY(isClosed->tryAcquire(1, StorageTwin::Patience));
        connect(wrapper.get(), &MemoryStrategy::invalidated, wrapper.get(), [emissions] { ++*emissions; });
        for (int i = 0; i < number; ++i) {
            QVERIFY(run->pool().startCreateTask(
                entry, QString(), QVariant::fromValue(run->value(quint64(i), 1)), CreatePoint::Done));
        }
        QTRY_COMPARE_WITH_TIMEOUT(int(entry->getNumberOfChildren()), number, StorageTwin::Patience);
        QVERIFY(run->pool().waitForDone(StorageTwin::Patience)); // each has announced its element
        QCOMPARE(loaded().size(), number);
        gate->release();
        QTRY_COMPARE_WITH_TIMEOUT(loaded().size(), limit, StorageTwin::Patience);
        QCOMPARE(loaded().constFirst(), number - limit);
        QCOMPARE(emissions->load(), 1);
    }

    void parametersThatAreRefusedChangeNothing()
    {
        for (quint64 i = 0; i < 4; ++i)
            add(i);
        QVERIFY(!strategies()->configureMemoryStrategy(R"({"limit":3})")); // there is no strategy
        QVERIFY(strategies()->installMemoryStrategy("last", R"({"limit":2})"));
        for (const char *parameters :
             {"", "{}", "[3]", R"({"limit":0})", R"({"limit":-3})", R"({"limit":"3"})"})
            QVERIFY(!strategies()->configureMemoryStrategy(parameters));
        QTRY_COMPARE(loaded(), (QList<int>{2, 3}));
        QVERIFY(strategies()->configureMemoryStrategy(R"({"limit":1e300})"));
        for (quint64 index = 0; index < 4; ++index)
            QCOMPARE(evaluate(index), 0);
    }

    void installsOnceAndRemoves()
    {
        QString type;
        QVERIFY(!strategies()->getMemoryStrategyType(type));
        QVERIFY(strategies()->installMemoryStrategy("lastadded", R"({"limit":2})"));
        QVERIFY(strategies()->getMemoryStrategyType(type));
        QCOMPARE(type, QString("last"));
        const auto list = RunningRepository::provider().getListPattern("names", "memory_strategy");
        QVERIFY(list->hasElement(entry->getUuid()));
        QVERIFY(strategies()->installMemoryStrategy("last", R"({"limit":1})")); // stays as it is
        for (quint64 i = 0; i < 4; ++i)
            add(i);
        QTRY_COMPARE(loaded(), (QList<int>{2, 3}));

        const LogCapture log;
        QVERIFY(!strategies()->installMemoryStrategy("unknown", QString()));
        QCOMPARE(log.lines().value(0),
                 "WARNING EntryMemoryStrategyProvider::installMemoryStrategy() installing memory "
                 "strategy=unknown for entry="
                     + entry->getUuid() + " failed, no such memory strategy type registered!");
        QVERIFY(strategies()->removeMemoryStrategy());
        QVERIFY(!strategies()->getMemoryStrategyType(type));
        QVERIFY(!list->hasElement(entry->getUuid()));
        QCOMPARE(evaluate(0), qint32(MemoryStrategyInterface::NoDecision));
        QVERIFY(strategies()->installMemoryStrategy("last", R"({"limit":1})"));
        QTRY_COMPARE(loaded(), QList<int>{3});
    }

    void aStrategyThatThrowsDecidesNothing()
    {
        auto *const repository = MemoryStrategyRepository::getInstance();
        using Strategy = std::shared_ptr<MemoryStrategy>;
        QVERIFY(repository->registerProduct(
            "throwing", [](const QString &, const QString &, const std::weak_ptr<const Entry> &) -> Strategy {
                return MakeEventThreadObject<ThrowingStrategy>();
            }));
        QVERIFY(repository->registerProduct(
            "unmade", [](const QString &, const QString &, const std::weak_ptr<const Entry> &) -> Strategy {
                throw std::runtime_error("created");
            }));
        const LogCapture log;
        QVERIFY(!strategies()->installMemoryStrategy("unmade", QString()));
        QVERIFY(strategies()->installMemoryStrategy("throwing", QString()));
        QVERIFY(!strategies()->configureMemoryStrategy(QString()));
        add(1);
        QCOMPARE(evaluate(0), qint32(MemoryStrategyInterface::NoDecision));
        QCOMPARE(loaded(), QList<int>{0});
        QVERIFY(log.lines().filter("CRITICAL MemoryStrategy::run() catched exception").size() >= 4);
        repository->unregisterProduct("throwing");
        repository->unregisterProduct("unmade");
    }

    void aStrategyHearsOfElementsWithNoLockHeld()
    {
        auto *const repository = MemoryStrategyRepository::getInstance();
        QVERIFY(repository->registerProduct(
            "asking", [](const QString &, const QString &, const std::weak_ptr<const Entry> &asked) {
                return std::shared_ptr<MemoryStrategy>(MakeEventThreadObject<AskingStrategy>(asked));
            }));
        QVERIFY(strategies()->installMemoryStrategy("asking", QString()));
        QVERIFY(
            entry->getLinkedPair()->getMemoryStrategyInterface()->installMemoryStrategy("asking", QString()));
        add(1);
        QCOMPARE(AskingStrategy::answers.load(), 2);
        repository->unregisterProduct("asking");
    }

    void theFirstPatternThatMatchesGivesTheType()
    {
        const auto repository = MemoryStrategyRepository::getInstance();
        repository->setStrategyPattern("strategy.test.b*", "time");
        repository->setStrategyPattern("strategy.test.*", "last");
        QCOMPARE(repository->getStrategyType("strategy.test", "bright"),
                 QString("last")); // "*" is before "b"
        QCOMPARE(repository->getStrategyType("strategy", "other"), QString());
        QCOMPARE(repository->getStrategyType("Strategy.test", "bright"), QString());
    }

    // A listener may hold the last pointer to it.
    void mayEndWithinItsEmission()
    {
        auto wrapper = MakeEventThreadObject<MemoryStrategyWrapper>();
        QVERIFY(wrapper->setStrategy(std::make_shared<ThrowingStrategy>()));
        QSemaphore ended;
        MemoryStrategyWrapper *const emitting = wrapper.get();
        QObject::connect(
            emitting, &MemoryStrategy::invalidated, emitting,
            [&ended, last = std::move(wrapper)]() mutable {
                last.reset();
                ended.release();
            },
            Qt::DirectConnection);
        emitting->announceElement("x");
        QVERIFY(ended.tryAcquire(1, StorageTwin::Patience));
    }
};

QTEST_GUILESS_MAIN(MemoryStrategyTest)

#include "MemoryStrategyTest.moc"
