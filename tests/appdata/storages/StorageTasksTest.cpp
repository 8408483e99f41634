#include "../support/RunningDataRepository.h"

#include <appdata/storages/StorageCreateTask.h>
#include <appdata/utils/RepositoryLookup.h>

#include <QtTest>

using namespace TestSupport;
using namespace Tessellum::AppData::Storages;
using Data::Elements::ElementUpdateData;
using Data::Entries::Entry;
using Data::Entries::utils::FindPair;
using Tessellum::AppData::utils::FindStorage;
using Tessellum::AppData::utils::StorageNames;
using Tessellum::Notification::CreateObserver;
using Tessellum::Notification::utils::WaitForSuccess;

namespace {

// Leaves updateElement() as it comes and writes down what it calls.
class DefaultUpdates : public StorageTwin
{
public:
    bool updateElement(const QString &entryUuid, const QString &elementUuid,
                       const ElementValues &values) override
    {
        return StorageImplementation::updateElement(entryUuid, elementUuid, values);
    }
    bool updateElementValue(const QString &, const QString &, const UpdateType &type,
                            const QVariant &) override
    {
        updated.append(type);
        return type != refused;
    }

    QList<UpdateType> updated;
    UpdateType refused = UpdateType::Unknown;
};

std::shared_ptr<Entry> HangIn(const RunningDataRepository::NodePtr &root, const QString &uuid)
{
    Data::Entries::EntryData data;
    data.deserialize.uuid = uuid;
    const auto entry = Tessellum::Notification::utils::MakeNode<Entry>(data);
    root->addChild(entry);
    return entry;
}

} // namespace

class StorageTasksTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RunningDataRepository> run;
    std::shared_ptr<StorageTwin> twin;

    auto root() { return run->provider().getRoot(); }
    static StorageCreateData createData(const std::shared_ptr<StorageImplementation> &implementation,
                                        LoadDataHint hint = LoadDataHint::OnDemand,
                                        const QString &type = QStringLiteral("any"))
    {
        StorageCreateDataDetails details;
        details.implementation = implementation;
        details.loadDataHint = hint;
        return {QStringLiteral("given"), type, QStringLiteral("label"), details};
    }
    std::shared_ptr<CreateObserver> start(const QString &name, const StorageCreateData &data)
    {
        return run->pool().startCreateTask(root(), name, QVariant::fromValue(data), CreatePoint::Done);
    }
    bool add(const QString &name, const StorageCreateData &data)
    {
        return WaitForSuccess(run->pool(), start(name, data));
    }
    // An entry with so many elements, on the medium alone.
    void store(const QString &uuid, const QString &name, int elements)
    {
        twin->connectStorage();
        twin->serializeEntry(uuid, run->record(name, QStringLiteral("disk")));
        for (int i = 0; i < elements; ++i) {
            ElementUpdateData data = run->value(quint64(i), 0);
            data.setRawData(QByteArray::number(i));
            twin->serializeElement(uuid, uuid + QString::number(i), data);
        }
    }

private Q_SLOTS:
    void init()
    {
        run = std::make_unique<RunningDataRepository>();
        twin = StorageTwin::Make();
    }
    void cleanup()
    {
        twin->release();
        run.reset();
        twin.reset();
    }

    void aTakenNameIsRefusedSilently()
    {
        QVERIFY(add("disk", createData(twin)));
        const auto first = FindStorage("disk");
        const LogCapture log;
        const auto second = StorageTwin::Make();
        QVERIFY(!add("disk", createData(second)));
        QVERIFY(log.lines().filter("StorageCreateTask").isEmpty());
        QCOMPARE(FindStorage("disk"), first);
        QVERIFY(!second->isConnected());
    }

    void ofTwoAddsOfOneNameOneWins()
    {
        const auto second = StorageTwin::Make();
        twin->arrange(Operation::ConnectStorage, Fault::Hang);
        const auto slow = start("disk", createData(twin));
        QTRY_COMPARE(twin->hanging(), 1);
        QVERIFY(add("disk", createData(second)));
        twin->release();
        QVERIFY(!WaitForSuccess(run->pool(), slow));
        QCOMPARE(StorageNames(), QStringList{"disk"});
        QVERIFY(FindStorage("disk")->getImplementation() == second);
    }

    void aFailureLeavesNothing()
    {
        run->provider().registerProduct("makes-nothing", [](const StorageCreateData &) { return nullptr; });
        run->provider().registerProduct(
            "throws", [](const StorageCreateData &) -> std::shared_ptr<StorageImplementation> {
                throw std::exception();
            });
        const quint64 children = root()->getNumberOfChildren();
        const auto fails = [&](const QString &type, const std::shared_ptr<StorageTwin> &given,
                               const QString &line) {
            const LogCapture log;
            QVERIFY(!add("disk", createData(given, LoadDataHint::OnDemand, type)));
            QCOMPARE(
                log.lines().filter("WARNING StorageCreateTask::createStorageInHierarchy() " + line).size(),
                1);
            QVERIFY(StorageNames().isEmpty());
            QCOMPARE(root()->getNumberOfChildren(), children);
        };
        fails(QString(), twin, "supplied creation data is empty, no storagecreated");
        fails("unknown", nullptr, "cannot create storage implementation with unknown type=unknown");
        for (const QString type : {"makes-nothing", "throws"})
            fails(type, nullptr, "failed to create storage implementation for storage type=" + type);
        for (const Fault fault : {Fault::Fail, Fault::Throw}) {
            twin->arrange(Operation::ConnectStorage, fault);
            fails("any", twin, "failed to connect storage '");
        }
        QVERIFY(add("disk", createData(twin))); // they stand in nobody's way
    }

    void entriesAreAttachedAtOnceOrOnDemand()
    {
        store("e1", "one", 2);
        store("e2", "two", 0);
        QVERIFY(add("lazy", createData(twin)));
        QCOMPARE(FindStorage("lazy")->getNumberOfChildren(), 0u);
        QVERIFY(add("eager", createData(twin, LoadDataHint::LoadAtOnce)));
        const auto eager = FindStorage("eager");
        QTRY_COMPARE(eager->getNumberOfChildren(), 2u);
        QTRY_COMPARE(eager->getChildById("e1")->getNumberOfChildren(), 2u);

        const auto lazy = FindStorage("lazy");
        const auto query = lazy->getQueryInterface();
        QHash<QString, StorageImplementation::EntryRecord> entries;
        QCOMPARE(query->getEntries(entries), 2u);
        QCOMPARE(query->getEntryLoadStatus("e1"), LoadStatus::NotLoaded);
        QCOMPARE(query->getEntryLoadStatus("e3"), LoadStatus::Unknown);
        QVERIFY(lazy->getManipulationInterface()->loadDataEntry("e1", LoadDataHint::OnDemand));
        QTRY_COMPARE(query->getEntryLoadStatus("e1"), LoadStatus::Loaded);
        QVERIFY(!lazy->getManipulationInterface()->loadDataEntry("e3", LoadDataHint::OnDemand));
    }

    void anUnloadedEntryComesBackWhole()
    {
        store("e1", "one", 3);
        QVERIFY(add("disk", createData(twin)));
        const auto storage = FindStorage("disk");
        const auto manipulation = storage->getManipulationInterface();
        QVERIFY(!manipulation->unloadDataEntry("e1"));
        const auto strategies = RunningRepository::provider().getListPattern("names", "memory_strategy");
        for (int round = 0; round < 2; ++round) {
            QVERIFY(manipulation->loadDataEntry("e1", LoadDataHint::OnDemand));
            QTRY_COMPARE(storage->getQueryInterface()->getEntryLoadStatus("e1"), LoadStatus::Loaded);
            const auto entry = std::dynamic_pointer_cast<Entry>(storage->getChildById("e1"));
            QCOMPARE(entry->getNumberOfChildren(), 3u);
            QCOMPARE(FindPair("plant.one")->getNumberOfChildren(), 3u);
            QTRY_COMPARE(run->shownStatus(entry->getNodePath()->getFullPath()), QStringLiteral("loaded"));

            QVERIFY(entry->getMemoryStrategyInterface()->installMemoryStrategy("last", QString()));
            QVERIFY(strategies->hasElement("e1"));
            const QString path = entry->getNodePath()->getFullPath();
            QVERIFY(manipulation->unloadDataEntry("e1"));
            QVERIFY(!FindPair("plant.one"));
            QVERIFY(entry->isDeleteFlagSet());
            QVERIFY(!strategies->hasElement("e1"));
            QVERIFY(!run->create(entry, run->value(9, 9))); // its values would miss the next one
            QTRY_COMPARE(run->shownStatus(path), QString());
        }
        QStringList uuids;
        QCOMPARE(twin->getElementIds("e1", uuids), 3u);
    }

    void nothingIsLockedWhileAnEntryIsLoaded()
    {
        store("e1", "one", 0);
        QVERIFY(add("disk", createData(twin)));
        const auto storage = FindStorage("disk");
        twin->arrange(Operation::DeserializeEntry, Fault::Hang);
        std::atomic<bool> loaded{false};
        std::unique_ptr<QThread> loader(QThread::create([&] {
            loaded = storage->getManipulationInterface()->loadDataEntry("e1", LoadDataHint::OnDemand);
        }));
        loader->start();
        QTRY_COMPARE(twin->hanging(), 1);
        QVERIFY(storage->setLabel("other"));
        QCOMPARE(storage->getQueryInterface()->getEntryLoadStatus("e1"), LoadStatus::NotLoaded);
        QVERIFY(!loaded);
        twin->release();
        QVERIFY(loader->wait(StorageTwin::Patience));
        QVERIFY(loaded);
    }

    void recordsThatCannotBeTrusted()
    {
        store("e1", "one", 2);
        auto record = run->record("two", "disk");
        record.classification.clear();
        twin->serializeEntry("e2", record);
        twin->setMiscounting(true);
        QVERIFY(add("disk", createData(twin)));
        const auto storage = FindStorage("disk");
        const auto query = storage->getQueryInterface();
        QVERIFY(query->hasEntry("e1"));
        QVERIFY(!query->hasEntry("e2"));
        QVERIFY(storage->getManipulationInterface()->loadDataEntry("e1", LoadDataHint::OnDemand));
        QCOMPARE(query->getEntryLoadStatus("e1"), LoadStatus::Loaded);
        QCOMPARE(storage->getChildById("e1")->getNumberOfChildren(), 0u);

        QHash<QString, StorageImplementation::EntryRecord> entries;
        twin->arrange(Operation::GetEntries, Fault::Throw);
        twin->arrange(Operation::DeserializeEntry, Fault::ThrowInt);
        twin->arrange(Operation::GetEntryTypes, Fault::ThrowInt);
        const LogCapture log;
        QCOMPARE(query->getEntries(entries), 0u);
        QVERIFY(!query->hasEntry("e1"));
        QCOMPARE(storage->getEntryTypes(), QStringList());
        QCOMPARE(log.lines().filter("CRITICAL StorageInterfaceProvider").size(), 1);
    }

    void aRemovalTakesTheEntriesAlong()
    {
        store("e1", "one", 2);
        QVERIFY(add("disk", createData(twin, LoadDataHint::LoadAtOnce)));
        auto storage = FindStorage("disk");
        const QString path = storage->getId();
        QTRY_COMPARE(storage->getQueryInterface()->getEntryLoadStatus("e1"), LoadStatus::Loaded);
        QTRY_COMPARE(run->shownStatus(path), QStringLiteral("loaded"));
        QVERIFY(run->remove(storage));
        QVERIFY(StorageNames().isEmpty());
        QVERIFY(!root()->hasChild("disk") && !root()->hasChild(path));
        QVERIFY(!FindPair("plant.one"));
        QTRY_COMPARE(run->shownStatus(path), QString());
        QVERIFY(!run->remove(storage)); // it has gone

        // The medium keeps what it held, and may be added again at once.
        QVERIFY(add("disk", createData(twin)));
        QVERIFY(FindStorage("disk") != storage);
        QVERIFY(FindStorage("disk")->getQueryInterface()->hasEntry("e1"));
    }

    void updatesGoThroughTheKeysInOrderUntilOneFails()
    {
        DefaultUpdates medium;
        ElementUpdateData values;
        values.setRawData("raw");
        values.setTimestamp(7);
        values.setActive(true);
        const QList<DataElementUpdateType> all{
            DataElementUpdateType::Active, DataElementUpdateType::Timestamp, DataElementUpdateType::RawData};
        QVERIFY(medium.updateElement("entry", "element", values));
        QCOMPARE(medium.updated, all);

        medium.refused = DataElementUpdateType::Timestamp;
        QVERIFY(!medium.updateElement("entry", "element", values));
        QCOMPARE(medium.updated.mid(3), all.mid(0, 2));
    }

    void aRemovalLeavesTheClassificationOfItsName()
    {
        QVERIFY(add("plant", createData(twin)));
        QVERIFY(run->addEntry(run->record("one", "plant")));
        QVERIFY(run->addEntry(run->record("two"))); // volatile
        QVERIFY(run->remove(FindStorage("plant")));
        QVERIFY(!FindPair("plant.one"));
        QVERIFY(FindPair("plant.two"));
        QVERIFY(add("plant", createData(twin)));
        QVERIFY(FindStorage("plant"));
        QVERIFY(FindPair("plant.two"));
    }

    void nothingStaysOfARemovedEntry()
    {
        // Removed while the attribute is on its way, and after.
        for (int round = 0; round < 20; ++round) {
            const QString uuid = QString::number(round);
            const auto entry = HangIn(run->provider().getRoot(), uuid);
            entry->setLoadStatus(LoadStatus::Loaded);
            if (round % 2 == 1)
                QTRY_COMPARE(run->shownStatus(uuid), QString("loaded"));
            QVERIFY(run->remove(entry));
        }
        QTRY_COMPARE(RunningRepository::provider().getRoot()->getChildById("appdata")->getNumberOfChildren(),
                     quint64(0));
    }
};

QTEST_GUILESS_MAIN(StorageTasksTest)

#include "StorageTasksTest.moc"
