#include "../../support/Threads.h"
#include "../support/RunningDataRepository.h"

#include <QtTest>

#include <malloc.h>

using namespace TestSupport;
using namespace Tessellum::AppData::Data;
using namespace Tessellum::AppData::Data::Entries;

class EntryManipulationTest : public QObject, private DiskFixture
{
    Q_OBJECT

private:
    using EntryPtr = std::shared_ptr<Entry>;

    static QString add(const EntryPtr &entry, quint64 timestamp, double value, qint64 *index = nullptr,
                       CreatePoint point = CreatePoint::Done)
    {
        return entry->getManipulationInterface()->addDataElementValue(
            timestamp, ElementValueKind::ParsedValue, value, point, index);
    }
    QStringList ids(const EntryPtr &entry) { return entry->getChildIds(); }

    void goRound(const QString &storageName)
    {
        const auto entry = run->addEntry(run->record("ring", storageName, 3));
        QList<qint64> indices;
        QStringList uuids;
        for (int i = 0; i < 7; ++i) {
            qint64 index = -7;
            uuids.append(add(entry, quint64(i), i, &index));
            indices.append(index);
        }
        QCOMPARE(indices, (QList<qint64>{0, 1, 2, 0, 1, 2, 0}));
        QCOMPARE(ids(entry), uuids.mid(0, 3));
        QCOMPARE(uuids.mid(3, 3), uuids.mid(0, 3));
        QCOMPARE(run->parsed(entry, 0), 6.0);
        QCOMPARE(run->parsed(entry, 1), 4.0);
        quint64 first = 0;
        quint64 last = 0;
        QVERIFY(entry->getQueryInterface()->getTimeSpan(first, last));
        QCOMPARE(first, 4u);
        QCOMPARE(last, 6u);
        if (!storageName.isEmpty())
            QCOMPARE(twin->getElementRawData(entry->getId(), uuids.first()), run->raw(6));

        // Not waited for: the uuid is known all the same, the index of an overwrite too.
        qint64 index = -7;
        QCOMPARE(add(entry, 7, 7, &index, CreatePoint::All), uuids.at(1));
        QCOMPARE(index, 1);
        QTRY_COMPARE(run->parsed(entry, 1), 7.0);
        const auto free = run->addEntry(run->record("free"));
        const QString fresh = add(free, 1, 1, &index, CreatePoint::All);
        QCOMPARE(index, -1);
        QTRY_COMPARE(ids(free), QStringList{fresh});

        const auto single = run->addEntry(run->record("single", storageName, 1));
        QCOMPARE(add(single, 1, 1), add(single, 2, 2));
        QCOMPARE(single->getNumberOfChildren(), 1u);
    }
    static int countLoaded(const EntryPtr &entry)
    {
        const auto elements = entry->getChildren(false);
        return int(std::count_if(elements.cbegin(), elements.cend(), [](const auto &element) {
            return std::dynamic_pointer_cast<Elements::Element>(element)->getLoadStatus()
                == LoadStatus::Loaded;
        }));
    }
    void addToAFullRing(const QString &storageName)
    {
        constexpr int capacity = 10000;
        constexpr int kept = 100;
        constexpr int adds = 300000;
        const auto entry = run->addEntry(run->record("ring", storageName, capacity));
        QVERIFY(entry->getMemoryStrategyInterface()->installMemoryStrategy(
            "last", QString(R"({"limit":%1})").arg(kept)));
        const auto addMany = [&](int number) {
            for (int i = 0; i < number; ++i) {
                // A place that is reserved for an element on its way is nobody else's yet.
                while (add(entry, quint64(i), i, nullptr, CreatePoint::All).isEmpty())
                    QThread::yieldCurrentThread();
            }
            // The strategy follows behind, and what it has not unloaded yet takes megabytes.
            return run->pool().waitForDone(StorageTwin::Patience)
                && (storageName.isEmpty()
                    || QTest::qWaitFor([&] { return countLoaded(entry) <= kept; }, StorageTwin::Patience));
        };
        QVERIFY(addMany(2 * capacity));
        QCOMPARE(entry->getNumberOfChildren(), quint64(capacity));
        // What a peak of the queues leaves behind comes once, a leak with each round. The least that an add
        // could leave behind are 32 bytes.
        bool grows = true;
        for (int round = 0; grows && round < 3; ++round) {
            const size_t before = mallinfo2().uordblks;
            QVERIFY(addMany(adds));
            grows = mallinfo2().uordblks >= before + 24 * adds;
        }
        QVERIFY(!grows);
        QCOMPARE(entry->getNumberOfChildren(), quint64(capacity));
    }

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void volatileRingGoesRound() { goRound(QString()); }
    void storedRingGoesRound() { goRound("disk"); }
    void fullVolatileRingTakesNoMoreMemory() { addToAFullRing(QString()); }
    void fullStoredRingTakesNoMoreMemory() { addToAFullRing("disk"); }

    void placesAreReservedBeforeTheyAreTaken()
    {
        const auto entry = run->addEntry(run->record("full", "disk", 3));
        QVERIFY(!add(entry, 1, 1).isEmpty());
        // Two elements whose tasks cannot end: the value for which there is no place is not taken.
        run->pool().setMaxThreadCount(8);
        twin->arrange(Operation::SerializeElement, Fault::Hang, 1, StorageTwin::Always);
        const auto gate = run->addEntry(run->record("gate", "disk"));
        for (int i = 0; i < 8; ++i)
            add(gate, 1, 1, nullptr, CreatePoint::All);
        QTRY_COMPARE(twin->hanging(), 8);
        QVERIFY(!add(entry, 2, 2, nullptr, CreatePoint::All).isEmpty());
        QVERIFY(!add(entry, 3, 3, nullptr, CreatePoint::All).isEmpty());
        QVERIFY(add(entry, 4, 4, nullptr, CreatePoint::All).isEmpty());
        twin->forgetFaults();
        twin->release();
        QTRY_COMPARE(entry->getNumberOfChildren(), 3u);
        QVERIFY(!add(entry, 5, 5).isEmpty());
        QCOMPARE(entry->getNumberOfChildren(), 3u);
    }

    void threadsFillARingToItsCapacity()
    {
        const quint64 capacity = 5;
        const auto entry = run->addEntry(run->record("ring", QString(), capacity));
        InThreads(4, [&entry](int thread) {
            for (int i = 0; i < 50; ++i)
                add(entry, quint64(thread * 100 + i), i);
        });
        QCOMPARE(entry->getNumberOfChildren(), capacity);
        QCOMPARE(entry->copyData().serialize.pendingCreates.load(), 0u);
        QVERIFY(!add(entry, 1, 1).isEmpty());
    }

    void ringReadAgainGoesOnAtItsOldest()
    {
        auto entry = run->addEntry(run->record("ring", "disk", 3));
        const QString uuid = entry->getId();
        for (int i = 0; i < 5; ++i)
            add(entry, quint64(i), i);
        run->dropStorage(storage);
        entry.reset();
        storage = run->addStorage("disk", twin);
        QVERIFY(run->create(storage, EntryDeserializeInformation{uuid, LoadDataHint::AttachOnly, storage}));
        entry = std::dynamic_pointer_cast<Entry>(storage->getChildById(uuid));
        QTRY_COMPARE(entry->getLoadStatus(), LoadStatus::Loaded);
        qint64 index = -1;
        add(entry, 5, 5, &index);
        QCOMPARE(index, 2);
        add(entry, 6, 6, &index);
        QCOMPARE(index, 0);
    }

    void failedAddsReturnNothing()
    {
        const auto entry = run->addEntry(run->record("ring", "disk", 1));
        const auto manipulation = entry->getManipulationInterface();
        const auto unknown = ElementValueKind::Unknown;
        QVERIFY(manipulation->addDataElementValue(1, unknown, 1, CreatePoint::Done).isEmpty());
        QVERIFY(!add(entry, 1, 1).isEmpty()); // the place of the failed one is free again
        QVERIFY(manipulation->addDataElementValue(1, unknown, 1, CreatePoint::Done).isEmpty());
        twin->arrange(Operation::UpdateElement, Fault::Fail);
        qint64 index = 0;
        QVERIFY(add(entry, 2, 2, &index).isEmpty());
        QCOMPARE(index, -1);
        run->pool().stop();
        QVERIFY(add(entry, 2, 2, &index, CreatePoint::All).isEmpty());
        run->pool().start();
    }

    void valuesAreReadAndWrittenByUuidAndIndex()
    {
        const auto entry = run->addEntry(run->record("speed", "disk"));
        const QString uuid = add(entry, 1, 1);
        add(entry, 2, 2);
        run->addEntry(run->record("speed"));
        const auto second = Data::Entries::utils::EntriesOfPair("plant.speed").value(1);
        const QString other = add(second, 3, 3);
        const auto ofPair = Data::Entries::utils::FindPair("plant.speed")->getManipulationInterface();
        const auto ofEntry = entry->getManipulationInterface();
        const auto parsed = ElementValueKind::ParsedValue;

        QVERIFY(ofEntry->writeDataElementValueByUuid(uuid, parsed, 1.5, UpdatePoint::Done));
        QCOMPARE(ofEntry->readDataElementValueByIndex(0)->toDouble(), 1.5);
        QVERIFY(ofEntry->writeDataElementValueByIndex(0, ElementValueKind::RawData, run->raw(2.5),
                                                      UpdatePoint::Done));
        QCOMPARE(ofPair->readDataElementValueByUuid(uuid)->toDouble(), 2.5);
        QCOMPARE(twin->getElementRawData(entry->getId(), uuid), run->raw(2.5));
        QVERIFY(ofPair->writeDataElementValueByIndex(2, parsed, 7.5, UpdatePoint::Done));
        QCOMPARE(ofPair->readDataElementValueByUuid(other)->toDouble(), 7.5);
        QVERIFY(ofPair->changeDataElementActivationByIndex(2, true)); // as it is
        QVERIFY(ofPair->changeDataElementActivationByUuid(other, false));
        QTRY_VERIFY(!run->element(second, 0)->isActive());
        const QString added = ofPair->addDataElementValue(4, parsed, 4.0, CreatePoint::Done);
        QVERIFY(entry->hasChild(added)); // to the first entry
        QVERIFY(!ofPair->readDataElementValueByIndex(9));
        QVERIFY(!ofPair->writeDataElementValueByUuid("x", parsed, 1.0, UpdatePoint::Done));
        run->remove(entry);
        run->remove(second);
        QVERIFY(ofPair->addDataElementValue(4, parsed, 4.0, CreatePoint::Done).isEmpty());
    }

    void whatIsNotThereIsTold()
    {
        const auto entry = run->addEntry(run->record("custom", QString(), 0, CategoryType::Custom));
        add(entry, 1, 1);
        const auto change = entry->getManipulationInterface();
        const auto parsed = ElementValueKind::ParsedValue;
        LogCapture log;
        QVERIFY(!change->readDataElementValueByUuid("x"));
        QVERIFY(!change->readDataElementValueByIndex(9));
        QVERIFY(!change->writeDataElementValueByUuid("x", parsed, 1.0, UpdatePoint::Done));
        QVERIFY(!change->writeDataElementValueByIndex(9, parsed, 1.0, UpdatePoint::Done));
        QVERIFY(!change->changeDataElementActivationByUuid("x", true));
        QVERIFY(!change->writeDataElementValueByIndex(0, ElementValueKind::RawData, QVariantMap(),
                                                      UpdatePoint::Done));
        QVERIFY(!change->writeDataElementValueByIndex(0, parsed, 1, UpdatePoint::Done));
        const QStringList lines{
            "readDataElementValueByUuid() called with unknown element uuid=x",
            "readDataElementValueByIndex() called with invalue element index=9",
            "writeDataElementValueByUuid() called with unknown element uuid=x",
            "writeDataElementValueByIndex() called with invalue element index=9",
            "changeDataElementActivationInternal() called with invalid element",
            "writeDataElementValueInternal() could not retrieve raw data from given variant with type "
            "name=QVariantMap",
            "writeDataElementValueInternal() could not retrieve parser instance for given category=custom"};
        QCOMPARE(log.lines(),
                 QStringList(lines).replaceInStrings(QRegularExpression("^"),
                                                     "WARNING EntryManipulationProvider::"));
    }
};

QTEST_GUILESS_MAIN(EntryManipulationTest)
#include "EntryManipulationTest.moc"
