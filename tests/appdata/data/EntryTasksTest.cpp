#include "../support/RunningDataRepository.h"

#include <appdata/data/entries/EntryCreateTask.h>
#include <appdata/memory_strategy/MemoryStrategyRepository.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>

#include <QtTest>

using namespace TestSupport;
using namespace Tessellum::AppData::Data::Entries;
using Data::Elements::ElementUpdateData;
using Data::Entries::utils::EntriesOfPair;
using Data::Entries::utils::FindPair;
using Data::Entries::utils::UnlinkEntryFromPair;
using Shared::Hierarchy::HierarchyStringPathLink;
using Tessellum::Notification::utils::MakeNode;

class EntryTasksTest : public QObject, private DiskFixture
{
    Q_OBJECT

private:
    auto root() { return run->provider().getRoot(); }
    /*! The paths of the link of plant.NAME. */
    QStringList link(const QString &name)
    {
        QStringList paths;
        const auto attribute = std::dynamic_pointer_cast<Tessellum::AppConfig::Attributes::Attribute>(
            root()->findChildByRelativePath("plant." + name));
        QVariant value;
        if (!attribute || !attribute->getValue(value, 0) || !value.isValid())
            return paths;
        auto targets = value.value<HierarchyStringPathLink>();
        while (!targets.isEmpty()) {
            const auto target = targets.pop().lock();
            paths.append(target ? target->getFullPath() : "gone");
        }
        return paths;
    }
    std::shared_ptr<Entry> child(const QString &uuid)
    {
        return std::dynamic_pointer_cast<Entry>(storage->getChildById(uuid));
    }
    EntryDeserializeInformation stub(const QString &uuid, LoadDataHint hint = LoadDataHint::AttachOnly)
    {
        return {uuid, hint, storage};
    }
    /*! Puts an entry with so many elements on the twin alone. */
    void store(const QString &uuid, int elements, quint64 capacity = 0)
    {
        twin->serializeEntry(uuid, run->record(uuid, "disk", capacity));
        for (int i = 0; i < elements; ++i) {
            ElementUpdateData data = run->value(quint64(i), 0);
            data.setRawData(run->raw(i));
            twin->serializeElement(uuid, uuid + QString::number(i), data);
        }
    }
    QStringList onMedium()
    {
        QHash<QString, EntrySerializeInformation> entries;
        twin->getEntries(entries);
        return entries.keys();
    }

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void pairLinksAllItsEntries()
    {
        run->addStorage("second", StorageTwin::Make());
        const auto info = std::make_shared<EntryInfo>();
        info->serialize = run->record("speed", "disk");
        QVERIFY(run->create(root(), info));
        const auto first = child(info->uuid);
        QVERIFY(first);
        QCOMPARE(first->getLoadStatus(), LoadStatus::Loaded);
        QVERIFY(run->addEntry(run->record("speed", "second")));
        const QStringList both = link("speed");
        QCOMPARE(both.size(), 3);
        const auto pair = FindPair("plant.speed");
        QCOMPARE(both.mid(0, 2),
                 QStringList({pair->getNodePath()->getFullPath(), first->getNodePath()->getFullPath()}));

        // Once more under its uuid: true, and nothing has changed.
        const int writes = twin->calls(Operation::SerializeEntry);
        QVERIFY(run->create(root(), info));
        QCOMPARE(link("speed"), both);
        QCOMPARE(twin->calls(Operation::SerializeEntry), writes);

        QVERIFY(run->create(first, run->value(1, 1)));
        QCOMPARE(pair->getNumberOfChildren(), 1u);
        QVERIFY(run->remove(first));
        QCOMPARE(link("speed"), (QStringList{both.at(0), both.at(2)}));
        QCOMPARE(pair->getNumberOfChildren(), 0u);
        QCOMPARE(onMedium(), QStringList{info->uuid}); // the task does not tell the medium
        QVERIFY(run->remove(EntriesOfPair("plant.speed").first()));
        QVERIFY(!root()->findChildByRelativePath("plant.speed"));
        QVERIFY(pair->isDeleteFlagSet());
    }

    void refusedEntryLeavesNothingBehind()
    {
        LogCapture log;
        QVERIFY(!run->addEntry(run->record("", "disk")));
        QVERIFY(!run->addEntry(run->record("x", "unknown")));
        QCOMPARE(log.lines().filter("unknown storage name=unknown cannot add entry").size(), 1);
        auto record = run->record("x");
        record.persistence = PersistenceType::Unknown;
        QVERIFY(!run->create(root(), record));
        for (const Fault fault : {Fault::Fail, Fault::Throw}) {
            twin->arrange(Operation::SerializeEntry, fault);
            QVERIFY(!run->addEntry(run->record("x", "disk")));
        }
        QVERIFY(!run->create(root(), EntryInfoContainer()));
        QCOMPARE(onMedium(), QStringList());
        QCOMPARE(root()->getNumberOfChildren(), 1u);

        record = run->record("volatile", "disk");
        record.persistence = PersistenceType::Volatile;
        QVERIFY(run->create(root(), record));
        const auto entry = EntriesOfPair("plant.volatile").first();
        QCOMPARE(entry->getStorageName(), QString());
        QVERIFY(!run->addEntry(run->record("other"), entry->getId()));
    }

    void pairOnTheWayToADeeperOne()
    {
        auto deep = run->record("b.c");
        const auto deeper = run->addEntry(deep);
        const auto entry = run->addEntry(run->record("b"));
        QVERIFY(deeper && entry);
        QCOMPARE(link("b").size(), 2);
        QVERIFY(run->remove(entry));
        QCOMPARE(link("b"), QStringList());
        QCOMPARE(FindPair("plant.b"), nullptr);
        QCOMPARE(EntriesOfPair("plant.b.c"), QList<std::shared_ptr<Entry>>{deeper});
    }

    void storedEntriesComeWithTheirElements()
    {
        store("full", 3);
        store("empty", 0);
        QVERIFY(run->create(storage,
                            QList<EntryDeserializeInformation>{stub("full"), stub("bad"), stub("empty")}));
        QVERIFY(!run->create(storage, QList<EntryDeserializeInformation>{stub("bad")}));
        QCOMPARE(child("empty")->getLoadStatus(), LoadStatus::Loaded);
        const auto full = child("full");
        QTRY_COMPARE(full->getLoadStatus(), LoadStatus::Loaded);
        QCOMPARE(full->getNumberOfChildren(), 3u);
        QCOMPARE(full->copyData().serialize.pendingCreates.load(), 0u);
        QCOMPARE(run->parsed(full, 2), 2.0);
        QCOMPARE(FindPair("plant.full")->getNumberOfChildren(), 3u);
        QVERIFY(run->create(storage, stub("full"))); // is there
        QCOMPARE(link("full").size(), 2);

        // Taken off the tree and attached again: the pair shows the new elements.
        UnlinkEntryFromPair(full);
        full->setDeleteFlag();
        QVERIFY(run->create(storage, stub("full", LoadDataHint::LoadAtOnce)));
        QTRY_COMPARE(child("full")->getLoadStatus(), LoadStatus::Loaded);
        QCOMPARE(FindPair("plant.full")->getNumberOfChildren(), 3u);

        // Elements that cannot be read, a medium that miscounts, a storage that has gone.
        store("broken", 2);
        twin->arrange(Operation::DeserializeElement, Fault::Throw, 1, StorageTwin::Always);
        QVERIFY(run->create(storage, stub("broken")));
        QTRY_COMPARE(child("broken")->getLoadStatus(), LoadStatus::NotLoaded);
        twin->forgetFaults();
        store("miscounted", 2);
        twin->setMiscounting(true);
        QVERIFY(run->create(storage, stub("miscounted")));
        QCOMPARE(child("miscounted")->getLoadStatus(), LoadStatus::Loaded);
        QCOMPARE(child("miscounted")->getNumberOfChildren(), 0u);
        LogCapture log;
        QVERIFY(!run->create(root(), EntryDeserializeInformation{"full", LoadDataHint::AttachOnly, {}}));
        QCOMPARE(log.lines().filter("expired storage instance provided, cannot add entry").size(), 1);
    }

    // Neither direction may hold one of the entries while it asks the other.
    void entriesAreCopiedIntoEachOther()
    {
        constexpr int rounds = 40;
        constexpr int values = 50;
        const QStringList uuids{"left", "right"};
        for (const QString &uuid : uuids) {
            const auto entry = run->addEntry(run->record(uuid, "disk"), uuid);
            QVERIFY(entry);
            for (int i = 0; i < values; ++i)
                QVERIFY(run->create(entry, run->value(quint64(i), i)));
        }
        const LogCapture log; // a value that both directions bring is refused once
        QList<std::shared_ptr<Tessellum::Notification::CreateObserver>> copies;
        for (int round = 0; round < rounds; ++round) {
            for (int from = 0; from < 2; ++from) {
                const auto info = std::make_shared<EntryInfo>();
                info->uuid = uuids.at(1 - from);
                info->sourceUuid = uuids.at(from);
                info->serialize = run->record(info->uuid, "disk");
                info->copyElements = true;
                info->elementsList = child(uuids.at(from))->getChildIds();
                copies.append(
                    run->pool().startCreateTask(root(), {}, QVariant::fromValue(info), CreatePoint::Done));
            }
        }
        QVERIFY(run->pool().waitForDone(StorageTwin::Patience));
        for (const auto &copy : qAsConst(copies))
            QVERIFY(copy->getResult().second);
        for (const QString &uuid : uuids)
            QCOMPARE(child(uuid)->getNumberOfChildren(), quint64(2 * values));
    }

    void discardedElementsAreNotLoaded()
    {
        store("late", 2);
        // All threads are busy, so that the elements stay in the queue.
        run->pool().setMaxThreadCount(8);
        twin->arrange(Operation::SerializeElement, Fault::Hang, 1, StorageTwin::Always);
        const auto gate = run->addEntry(run->record("gate", "disk"));
        for (int i = 0; i < 8; ++i)
            run->pool().startCreateTask(gate, {}, QVariant::fromValue(run->value(1, 1)), CreatePoint::All);
        QTRY_COMPARE(twin->hanging(), 8);
        EntryCreateTask({}, storage, {}, QVariant::fromValue(stub("late")), CreatePoint::Done).run();
        QCOMPARE(child("late")->getLoadStatus(), LoadStatus::CurrentlyLoading);
        run->pool().clear();
        QCOMPARE(child("late")->getLoadStatus(), LoadStatus::NotLoaded);
        QCOMPARE(child("late")->copyData().serialize.pendingCreates.load(), 0u);
        twin->forgetFaults();
        twin->release();
        QTRY_COMPARE(gate->getNumberOfChildren(), 8u);
    }

    void entryWhosePairHasNoPlace()
    {
        store("kept", 2, 5);
        const QStringList before = onMedium();
        // The place of the pair's link is taken by a node that is no attribute.
        storage->addChild(MakeNode<Shared::Hierarchy::HierarchyNodeInstance>("entry"));
        LogCapture log;
        for (const char *uuid : {"new", "kept"}) {
            const auto info = std::make_shared<EntryInfo>();
            info->uuid = uuid;
            info->serialize = run->record("entry", "disk");
            info->serialize.classification = storage->getId();
            QVERIFY(!run->create(root(), info));
            QCOMPARE(log.lines().filter("failed to link uuid to entry path, removing the entry").size(),
                     uuid == QString("new") ? 1 : 2);
        }
        QCOMPARE(storage->getNumberOfChildren(), 1u);
        QCOMPARE(onMedium(), before);
        EntrySerializeInformation record;
        QVERIFY(twin->deserializeEntry("kept", record));
        QCOMPARE(record.classification, QString("plant"));
        QCOMPARE(record.capacity, 5u);
        QStringList elements;
        QCOMPARE(twin->getElementIds("kept", elements), 2u);
    }

    void pairStandsForAllItsEntries()
    {
        run->addEntry(run->record("speed", "disk"));
        run->addEntry(run->record("speed"));
        const auto pair = FindPair("plant.speed");
        QVERIFY(run->remove(pair));
        QVERIFY(!root()->findChildByRelativePath("plant.speed"));
        QCOMPARE(storage->getNumberOfChildren(), 0u);
        QVERIFY(!run->remove(pair)); // has gone
    }

    void entryOfAStorageThatGoesMeanwhile()
    {
        MemoryStrategies::MemoryStrategyRepository::getInstance()->setStrategyPattern("plant.fast*", "last");
        const auto list = RunningRepository::provider().getListPattern("names", "memory_strategy");
        const auto info = std::make_shared<EntryInfo>();
        info->uuid = "late";
        info->serialize = run->record("fast", "disk");
        twin->arrange(Operation::SerializeEntry, Fault::Hang);
        const auto observer
            = run->pool().startCreateTask(root(), {}, QVariant::fromValue(info), CreatePoint::Done);
        QTRY_COMPARE(twin->hanging(), 1);
        storage->setDeleteFlag();
        twin->release();
        QVERIFY(!Tessellum::Notification::utils::WaitForSuccess(run->pool(), observer));
        QCOMPARE(onMedium(), QStringList());
        QVERIFY(!list->hasElement("late"));
    }
};

QTEST_GUILESS_MAIN(EntryTasksTest)
#include "EntryTasksTest.moc"
