#include "support/RunningDataRepository.h"

#include <appdata/data/elements/parsers/DefaultElementParser.h>
#include <appdata/data/entries/EntryProperties.h>
#include <appdata/ManagedRepository.h>
#include <appdata/utils/RepositoryDataEntryProvider.h>
#include <notification/RepositoryLocks.h>

#include <QtTest>

using namespace TestSupport;
namespace Property = Data::Entries::EntryProperties;

namespace {

using Properties = QHash<QString, QVariant>;
using EntryPtr = std::shared_ptr<Interfaces::DataEntryInterface>;

Properties volatileEntry(const QString &classification, const QString &name)
{
    return {{Property::Classification(), classification},
            {Property::Name(), name},
            {Property::CategoryType(), QVariant::fromValue(CategoryType::Float)},
            {Property::Persistence(), QVariant::fromValue(PersistenceType::Volatile)}};
}

} // namespace

/*! The data repository as an application sees it. */
class DataRepositoryTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RunningDataRepository> run;
    std::unique_ptr<ManagedRepository> repository;
    std::shared_ptr<StorageTwin> twin;

    static std::unique_ptr<ManagedRepository> makeFront()
    {
        return std::make_unique<ManagedRepository>(nullptr, &Tessellum::Core::appDataLock());
    }
    auto entries() { return repository->getDataEntryInterface(); }
    auto storages() { return repository->getStorageInterface(); }
    bool addDisk()
    {
        Storages::StorageCreateDataDetails details;
        details.implementation = twin;
        return storages()->addStorage("twin", "disk", details, CreatePoint::Done, "the disk");
    }
    EntryPtr addVolatile(const QString &classification, const QString &name)
    {
        return entries()->addDataEntryExtended(QString(), volatileEntry(classification, name));
    }
    EntryPtr addStored(const QString &classification, const QString &name)
    {
        return entries()->addDataEntry("disk", classification, name, CategoryType::Float, QString(),
                                       PersistenceType::Persistent, false);
    }
    static QString addValue(const EntryPtr &entry, quint64 timestamp, double value)
    {
        return entry->getManipulationInterface()->addDataElementValue(
            timestamp, ElementValueKind::ParsedValue, value, CreatePoint::Done);
    }
    static QStringList elementsOf(const EntryPtr &entry)
    {
        QStringList uuids;
        for (const auto &element :
             entry->getQueryInterface()->getElements(ActivationMask::All, Interfaces::PassThroughFilter()))
            uuids.append(element->getUuid());
        return uuids;
    }
    static QString strategyOf(const EntryPtr &entry)
    {
        QString type;
        entry->getMemoryStrategyInterface()->getMemoryStrategyType(type);
        return type;
    }
    QStringList found(const QString &pattern)
    {
        QStringList names;
        for (const EntryPtr &entry : entries()->getDataEntries(pattern))
            names.append(entry->getClassification() + '/' + entry->getName());
        names.sort();
        return names;
    }

    void takeOver(bool fromPair)
    {
        auto properties = volatileEntry("plant", "source");
        properties.insert(Property::Capacity(), 5);
        const auto entry = entries()->addDataEntryExtended(QString(), properties);
        QStringList uuids;
        for (int i = 0; i < 3; ++i)
            uuids.append(addValue(entry, quint64(i), i + 0.5));
        const auto source = fromPair ? entries()->getDataEntry("plant", "source") : entry;

        const Properties plain{{Property::SourceEntry(), source->getUuid()}, {Property::Name(), "plain"}};
        const auto empty = entries()->addDataEntryExtended(QString(), plain);
        QCOMPARE(empty->getClassification(), QString("plant"));
        QCOMPARE(empty->getCategory()->getType(), CategoryType::Float);
        QCOMPARE(empty->getPersistenceType(), PersistenceType::Volatile);
        QCOMPARE(empty->getCapacity(), quint64(5));
        QCOMPARE(elementsOf(empty), QStringList());

        properties = plain;
        properties.insert(Property::Name(), "whole");
        properties.insert(Property::ElementsList(), QStringList());
        const auto whole = entries()->addDataEntryExtended(QString(), properties);
        QTRY_COMPARE(elementsOf(whole), uuids);
        QCOMPARE(*whole->getManipulationInterface()->readDataElementValueByUuid(uuids.at(2)), QVariant(2.5));

        properties = volatileEntry("other", "part");
        properties.insert(Property::CategoryType(), QVariant::fromValue(CategoryType::Text));
        properties.insert(Property::Capacity(), 7);
        properties.insert(Property::SourceEntry(), source->getUuid());
        properties.insert(Property::ElementsList(), QStringList{uuids.at(2), uuids.at(0), "none"});
        const auto part = entries()->addDataEntryExtended(QString(), properties);
        QTRY_COMPARE(elementsOf(part), (QStringList{uuids.at(0), uuids.at(2)}));
        QCOMPARE(part->getClassification(), QString("other"));
        QCOMPARE(part->getCapacity(), quint64(7));
        QCOMPARE(part->getCategory()->getType(), CategoryType::Float);
    }

private Q_SLOTS:
    void initTestCase()
    {
        RunningDataRepository::provider().registerProduct(
            "twin", [](const Storages::StorageCreateData &data) { return StorageTwin::Make(data); });
    }
    void init()
    {
        run = std::make_unique<RunningDataRepository>();
        repository = makeFront();
        twin = StorageTwin::Make();
    }
    void cleanup()
    {
        repository.reset();
        run.reset();
        twin.reset();
    }

    void storagesByTheirNames()
    {
        QVERIFY(repository->getStorageTypes().contains("twin"));
        QVERIFY(addDisk());
        QVERIFY(!storages()->addStorage("twin", "a.b", {}, CreatePoint::Done, "label"));
        QVERIFY(storages()->addStorage("twin", "spare", {}, CreatePoint::Done, "label"));
        QCOMPARE(storages()->getStorageNames(), (QStringList{"disk", "spare"}));
        QCOMPARE(storages()->getStorageLabel("disk"), QString("the disk"));
        QCOMPARE(storages()->getStorageLabel("none"), QString());
        QVERIFY(!storages()->getStorage("none"));
        const auto disk = storages()->getStorage("disk");
        QCOMPARE(disk->getLoadStatus(), LoadStatus::Loaded);

        QVERIFY(storages()->removeStorage("disk"));
        QCOMPARE(storages()->getStorageNames(), QStringList("spare"));
        const LogCapture log;
        QVERIFY(!storages()->removeStorage("disk"));
        QCOMPARE(log.lines(),
                 QStringList("WARNING RepositoryStorageProvider::removeStorage() storage with name=disk does "
                             "not exist"));
        QTRY_COMPARE(disk->getName(), QString());
    }

    void entriesByProperties()
    {
        QVERIFY(addDisk());
        const auto single = entries()->addDataEntry(QString(), "plant", "single", CategoryType::Text, "UTF",
                                                    PersistenceType::Volatile, true);
        QVERIFY(single->isSingleElementEntry());
        QCOMPARE(single->getCategory()->getDetail(), QString("utf"));
        auto properties = volatileEntry("plant", "full");
        properties.insert(Property::Capacity(), 3);
        properties.insert(Property::SingleElement(), true);
        properties.insert(Property::DestinationEntry(), "my.own");
        const auto full = entries()->addDataEntryExtended(QString(), properties);
        QCOMPARE(full->getCapacity(), quint64(3));
        QCOMPARE(full->getUuid(), QString("my.own"));

        // The pair has a uuid of its own; an entry is found by its path as well.
        const auto stored = addStored("plant", "stored");
        QCOMPARE(stored->getStorageName(), QString("disk"));
        const auto pair = entries()->getDataEntry("plant", "stored");
        QVERIFY(pair->getUuid() != stored->getUuid());
        QCOMPARE(entries()->getDataEntry(pair->getUuid())->getName(), QString("stored"));
        const QString path = storages()->getStorage("disk")->getId() + '.' + stored->getUuid();
        QCOMPARE(entries()->getDataEntry(path)->getUuid(), stored->getUuid());
        QVERIFY(!entries()->getDataEntry("plant") && !entries()->getDataEntry("plant", "none"));
    }

    void propertiesThatAreRefused()
    {
        const auto isRefused = [this](const QString &key, const QVariant &value, const QString &line) {
            auto properties = volatileEntry("plant", "a");
            properties.insert(key, value);
            const LogCapture log;
            QVERIFY2(!entries()->addDataEntryExtended(QString(), properties), qPrintable(key));
            QCOMPARE(log.lines().value(0), line.isEmpty() ? QString() : "WARNING " + line);
            QCOMPARE(found("*"), QStringList());
        };
        isRefused(Property::Name(), QString(), {});
        isRefused(Property::Classification(), QVariant(), {});
        isRefused(Property::CategoryType(), "float", {});
        isRefused(Property::CategoryType(), 99,
                  "ConvertDataEntryCategoryToString() callled with unkown category=99");
        isRefused(Property::Persistence(), 0, {});
        isRefused(
            Property::SourceEntry(), "none",
            "RepositoryDataEntryProvider::addDataEntryAsynchronous() could not get the source entry with "
            "uuid=none");
        isRefused(Property::Persistence(), 1,
                  "EntryCreateTask::createAndSerializeEntryInHierarchy unknown storage name= cannot add "
                  "entry");
        // The front and the provider behind it each have a line of their own.
        const LogCapture log;
        QVERIFY(!entries()->addDataEntryExtended(QString(), {}));
        QVERIFY(!run->provider().getDataEntryProvider()->addDataEntryExtended(QString(), {}));
        QCOMPARE(
            log.lines(),
            QStringList({"WARNING WrappedRepositoryDataEntryProvider::addDataEntryExtended()failed to parse "
                         "empty entry specification",
                         "WARNING RepositoryDataEntryProvider::addDataEntryExtended() failed to parse "
                         "empty entry specification"}));
    }

    void entryTakesOverFromAnother() { takeOver(false); }
    void entryTakesOverFromAPair() { takeOver(true); }

    void patternsAndRemovals()
    {
        QVERIFY(addDisk());
        const auto stored = addStored("plant", "a");
        QVERIFY(addVolatile("plant", "a") && addVolatile("plant", "b") && addVolatile("plant.a", "deep"));
        const auto shop = addStored("shop", "a");
        QCOMPARE(found("plant.a"), (QStringList{"plant/a", "plant/a"}));
        QCOMPARE(found("*.a"), (QStringList{"plant/a", "plant/a", "shop/a"}));
        QCOMPARE(found("plant.*"), (QStringList{"plant.a/deep", "plant/a", "plant/a", "plant/b"}));
        for (const char *nothing : {"", "plant", "plant.c", "plant..a"})
            QCOMPARE(found(nothing), QStringList());

        QCOMPARE(entries()->removeDataEntries("plant.b"), 1);
        QCOMPARE(entries()->removeDataEntries("plant.b"), 0);
        // The uuid of a pair stands for all of its entries.
        QVERIFY(entries()->removeDataEntry(entries()->getDataEntry("plant", "a")->getUuid()));
        QVERIFY(!entries()->removeDataEntry(stored->getUuid()));
        QCOMPARE(found("*"), (QStringList{"plant.a/deep", "shop/a"}));
        QHash<QString, Data::Entries::EntrySerializeInformation> onMedium;
        QCOMPARE(twin->getEntries(onMedium), quint64(1));

        QVERIFY(entries()->removeDataEntryFromStorage("disk", shop->getUuid()));
        QCOMPARE(twin->getEntries(onMedium), quint64(0));
        QVERIFY(entries()->getDataEntry(shop->getUuid()));
        const LogCapture log;
        QVERIFY(!entries()->removeDataEntryFromStorage("none", shop->getUuid()));
        QCOMPARE(
            log.lines(),
            QStringList("WARNING RepositoryDataEntryProvider::removeDataEntryFromStorage() unknown storage "
                        "name 'none' cannot remove entry"));
    }

    void strategiesByWildcard()
    {
        const auto strategies = repository->getMemoryStrategyInterface();
        QVERIFY(strategies->getMemoryStrategyTypes().contains("last"));
        const auto first = addVolatile("tank", "a");
        QVERIFY(addVolatile("tank", "b"));
        const auto other = addVolatile("shed", "a");
        QCOMPARE(strategies->installMemoryStrategy("tank", "*", "last"), 2);
        QCOMPARE(strategyOf(first), QString("last"));
        QCOMPARE(strategyOf(other), QString());
        QCOMPARE(strategyOf(addVolatile("tank", "later")), QString("last"));

        const LogCapture log;
        QCOMPARE(strategies->installMemoryStrategy("shed", "*", "nonsense"), 0);
        QCOMPARE(
            log.lines(),
            QStringList("WARNING RepositoryMemoryStrategyProvider::installMemoryStrategy() installing memory "
                        "strategy=nonsense for classification=shed and name=* failed, no such memory "
                        "strategy type registered!"));
        QCOMPARE(strategyOf(addVolatile("shed", "later")), QString());
        QCOMPARE(log.lines().size(), 1); // no pattern was kept that a new entry would trip over
        QCOMPARE(strategies->removeMemoryStrategy("tank", "*", "last"), 0);
        QCOMPARE(strategyOf(first), QString("last"));
    }

    void registeredCategoriesAreListedInEachRun()
    {
        const auto add = [this] {
            return repository->getElementRegistrationInterface()->registerElement(
                CategoryType::Unit, "Volt",
                [] { return std::make_shared<Data::Elements::Parsers::DefaultElementParser>(); });
        };
        const auto listed = [] {
            return RunningRepository::provider()
                .getListPattern("types", "custom_data_elements")
                ->getElements();
        };
        QVERIFY(add());
        QCOMPARE(listed(), QStringList("unit:volt"));
        run.reset();
        run = std::make_unique<RunningDataRepository>();
        repository = makeFront();
        QVERIFY(!add());
        QCOMPARE(listed(), QStringList("unit:volt"));
        const auto entry = entries()->addDataEntry(QString(), "plant", "a", CategoryType::Unit, "volt",
                                                   PersistenceType::Volatile, false);
        QVERIFY(!addValue(entry, 1, 2.5).isEmpty());
    }

    void handlesAfterAStopAnswerEmpty()
    {
        QVERIFY(addDisk());
        const auto entry = addStored("plant", "a");
        const QString uuid = addValue(entry, 1, 2.5);
        const auto query = entry->getQueryInterface();
        const auto change = entry->getManipulationInterface();
        const auto element = query->getElementById(uuid);
        const auto value = element->getQueryInterface();
        const auto disk = storages()->getStorage("disk");
        QCOMPARE(*value->getParsedData(), QVariant(2.5));
        QVERIFY(!repository->isExpired());

        const auto isEmpty = [](ManagedRepository &front) {
            const auto provided = front.getDataEntryInterface();
            return front.getStorageInterface()->getStorageNames().isEmpty()
                && provided->getDataEntries("*").isEmpty() && provided->removeDataEntries("*") == 0
                && !provided->addDataEntryExtended(QString(), volatileEntry("plant", "b"))
                && front.getMemoryStrategyInterface()->installMemoryStrategy("x", "y", "last") == 0;
        };
        run.reset();
        QVERIFY(repository->isExpired());
        QVERIFY(isEmpty(*repository));
        QVERIFY(isEmpty(*makeFront()));
        QCOMPARE(entry->getUuid(), QString());
        QVERIFY(!entry->getCategory() && !entry->getQueryInterface());
        QCOMPARE(query->countElements(ActivationMask::All), quint64(0));
        QVERIFY(!query->getElementById(uuid));
        qint64 index = 7;
        QCOMPARE(
            change->addDataElementValue(2, ElementValueKind::ParsedValue, 1.5, CreatePoint::Done, &index),
            QString());
        QCOMPARE(index, qint64(-1));
        QCOMPARE(element->getUuid(), QString());
        QVERIFY(!value->getParsedData()->isValid()); // never null
        QCOMPARE(disk->getLabel(), QString());

        run = std::make_unique<RunningDataRepository>();
        QVERIFY(isEmpty(*repository));
        repository = makeFront();
        QVERIFY(addVolatile("plant", "b"));
    }
};

QTEST_GUILESS_MAIN(DataRepositoryTest)
#include "DataRepositoryTest.moc"
