// What a recorded value costs, in time and in memory, by the interface that an application uses.

#include <appdata/data/elements/Element.h>
#include <appdata/data/entries/EntryProperties.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/utils/RepositoryProvider.h>
#include <core/Library.h>
#include <notification/RepositoryHierarchyThreadProvider.h>
#include <notification/utils/MakeNode.h>

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QUuid>

#include <benchmark/benchmark.h>
#include <malloc.h>

using namespace Tessellum;
using namespace Tessellum::AppData;
using Notification::CreatePoint;
namespace Property = Tessellum::AppData::Data::Entries::EntryProperties;

namespace {

using EntryPtr = std::shared_ptr<Interfaces::DataEntryInterface>;

constexpr int rangeLength = 1000;
constexpr int rangeTotal = 1000000;

double usedBytes()
{
    const auto info = mallinfo2();
    return double(info.uordblks + info.hblkhd);
}

/*! The library running; one for all benchmarks, as in an application. */
class RunningLibrary
{
public:
    RunningLibrary()
        : application(argumentCount, arguments)
    {
        initializeLibrary();
        entries = getCoreInterface()->getAppDataRepository()->getDataEntryInterface();
    }

    static RunningLibrary &instance()
    {
        static auto *const library = new RunningLibrary;
        return *library;
    }

    EntryPtr addEntry(quint64 capacity)
    {
        return entries->addDataEntryExtended(QString(),
                                             {{Property::Classification(), QStringLiteral("bench")},
                                              {Property::Name(), QString::number(++number)},
                                              {Property::CategoryType(), quint32(CategoryType::Float)},
                                              {Property::Persistence(), quint32(PersistenceType::Volatile)},
                                              {Property::Capacity(), capacity}});
    }

    void removeEntry(const EntryPtr &entry)
    {
        entries->removeDataEntry(entry->getUuid());
        Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
    }

    std::shared_ptr<Interfaces::RepositoryDataEntryInterface> entries;

private:
    int argumentCount = 1;
    char name[6] = "bench";
    char *arguments[2] = {name, nullptr};
    QCoreApplication application;
    int number = 0;
};

/*! Adds without waiting, and returns when all have been taken in. */
void addValues(const EntryPtr &entry, qint64 first, qint64 count)
{
    const auto manipulation = entry->getManipulationInterface();
    for (qint64 i = first; i < first + count; ++i)
        manipulation->addDataElementValue(quint64(i), ElementValueKind::ParsedValue, double(i),
                                          CreatePoint::All);
    utils::RepositoryProvider::getInstance()->getThreadPool().waitForDone();
}

void AddValues(benchmark::State &state)
{
    RunningLibrary &library = RunningLibrary::instance();
    double bytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const EntryPtr entry = library.addEntry(0);
        const double before = usedBytes();
        state.ResumeTiming();
        addValues(entry, 0, state.range(0));
        state.PauseTiming();
        bytes = (usedBytes() - before) / double(state.range(0));
        library.removeEntry(entry);
        state.ResumeTiming();
    }
    // 20 times the floor, and the price of one task.
    constexpr double wantedNs = 20 * 80 + 4 * 550;
    state.counters["items"] = double(state.range(0));
    state.counters["aim_ns"] = wantedNs;
    state.counters["bytes"] = bytes;
}
BENCHMARK(AddValues)->Arg(100000)->Arg(1000000)->UseRealTime()->Unit(benchmark::kMillisecond);

void AddValues_Floor(benchmark::State &state)
{
    for (auto _ : state) {
        QList<QPair<quint64, QVariant>> list;
        for (qint64 i = 0; i < state.range(0); ++i)
            list.append({quint64(i), double(i)});
        benchmark::DoNotOptimize(list);
    }
    state.counters["items"] = double(state.range(0));
}
BENCHMARK(AddValues_Floor)->Arg(100000)->Arg(1000000)->UseRealTime()->Unit(benchmark::kMillisecond);

/*! The memory of the classes that an element is made of, without a tree around them. */
void BareElements(benchmark::State &state)
{
    double bytes = 0;
    for (auto _ : state) {
        const double before = usedBytes();
        std::vector<std::unique_ptr<Data::Elements::Element>> elements;
        for (qint64 i = 0; i < state.range(0); ++i) {
            elements.push_back(
                std::make_unique<Data::Elements::Element>(Data::Elements::ElementData(), nullptr));
        }
        bytes = (usedBytes() - before) / double(state.range(0));
    }
    state.counters["items"] = double(state.range(0));
    state.counters["bytes"] = bytes;
}
BENCHMARK(BareElements)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);

/*! A full ring for good: the bytes are the growth for each overwrite, and have to be none. */
void OverwriteRing(benchmark::State &state)
{
    RunningLibrary &library = RunningLibrary::instance();
    constexpr int capacity = 1000;
    const EntryPtr entry = library.addEntry(capacity);
    addValues(entry, 0, 10 * capacity);
    double bytes = 0;
    for (auto _ : state) {
        const double before = usedBytes();
        addValues(entry, 0, state.range(0));
        bytes = (usedBytes() - before) / double(state.range(0));
    }
    library.removeEntry(entry);
    state.counters["items"] = double(state.range(0));
    state.counters["bytes"] = bytes;
}
BENCHMARK(OverwriteRing)->Arg(1000000)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

/*! Adds while a strategy says what stays in memory: no cost grows with its limit or with the entry. */
void addUnderStrategy(benchmark::State &state, const QString &type, const QString &parameters)
{
    RunningLibrary &library = RunningLibrary::instance();
    for (auto _ : state) {
        state.PauseTiming();
        const EntryPtr entry = library.addEntry(0);
        entry->getMemoryStrategyInterface()->installMemoryStrategy(type, QString());
        entry->getMemoryStrategyInterface()->configureMemoryStrategy(parameters);
        state.ResumeTiming();
        addValues(entry, 0, state.range(0));
        Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
        state.PauseTiming();
        library.removeEntry(entry);
        state.ResumeTiming();
    }
    state.counters["items"] = double(state.range(0));
}

void AddUnderLast(benchmark::State &state)
{
    addUnderStrategy(state, QStringLiteral("last"), QStringLiteral("{\"limit\":%1}").arg(state.range(1)));
}
BENCHMARK(AddUnderLast)
    ->Args({100000, 10})
    ->Args({100000, 10000})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void AddUnderTimeSpan(benchmark::State &state)
{
    addUnderStrategy(
        state, QStringLiteral("timespan"),
        QStringLiteral("{\"from\":{\"value\":%1,\"type\":\"relative_from_end\"}}").arg(state.range(1)));
}
BENCHMARK(AddUnderTimeSpan)->Args({100000, 10000})->UseRealTime()->Unit(benchmark::kMillisecond);

/*! A medium with one entry, whose elements cost it nothing. */
class ManyElements : public Storages::StorageImplementation
{
public:
    explicit ManyElements(int elements)
        : StorageImplementation(Storages::StorageCreateData())
    {
        for (int i = 0; i < elements; ++i)
            uuids.append(QUuid::createUuid().toString());
    }

    QStringList getEntryTypes() const override { return {}; }
    bool connectStorage() override { return true; }
    bool disconnectStorage() override { return true; }
    bool isConnected() const override { return true; }
    bool serializeEntry(const QString &, const EntryRecord &) override { return false; }
    bool serializeElement(const QString &, const QString &, const ElementValues &) override { return false; }
    quint64 getEntries(QHash<QString, EntryRecord> &) const override { return 0; }
    bool deserializeEntry(const QString &, EntryRecord &record) const override
    {
        record = EntryRecord(QStringLiteral("stored"), QStringLiteral("bench"),
                             Data::Entries::EntryCategory(CategoryType::Float, QString()), QString(),
                             PersistenceType::Persistent, 0);
        return true;
    }
    quint64 getElementIds(const QString &, QStringList &found) const override
    {
        found = uuids;
        return quint64(found.size());
    }
    bool deserializeElement(const QString &, const QString &, ElementValues &values,
                            const LoadDataHint &) const override
    {
        values.setActive(true);
        values.setTimestamp(1);
        return true;
    }
    QByteArray getElementRawData(const QString &, const QString &) const override { return {}; }
    bool removeEntry(const QString &) override { return false; }
    bool updateElementValue(const QString &, const QString &, const DataElementUpdateType &,
                            const QVariant &) override
    {
        return false;
    }

private:
    QStringList uuids;
};

/*! Attaches an entry of a storage until all its elements stand in the tree. */
void AttachStored(benchmark::State &state)
{
    RunningLibrary::instance();
    const auto storages = getCoreInterface()->getAppDataRepository()->getStorageInterface();
    const QString name = QStringLiteral("medium");
    Storages::StorageCreateDataDetails details;
    details.implementation = Notification::utils::MakeNode<ManyElements>(int(state.range(0)));
    storages->addStorage(QStringLiteral("bench"), name, details, CreatePoint::Done, name);
    const auto storage = storages->getStorage(name);
    const QString uuid = QStringLiteral("stored");
    for (auto _ : state) {
        if (!storage->getManipulationInterface()->loadDataEntry(uuid, LoadDataHint::OnDemand))
            state.SkipWithError("the entry is not attached");
        utils::RepositoryProvider::getInstance()->getThreadPool().waitForDone();
        state.PauseTiming();
        if (storage->getQueryInterface()->getEntryLoadStatus(uuid) != LoadStatus::Loaded)
            state.SkipWithError("the entry is not loaded");
        storage->getManipulationInterface()->unloadDataEntry(uuid);
        Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
        state.ResumeTiming();
    }
    storages->removeStorage(name);
    state.counters["items"] = double(state.range(0));
    state.counters["aim_ns"] = 15000; // 100,000 in 1.5 s
}
BENCHMARK(AttachStored)->Arg(10000)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);

/*! One million elements for the queries. */
EntryPtr largeEntry()
{
    static EntryPtr entry;
    if (!entry) {
        entry = RunningLibrary::instance().addEntry(0);
        addValues(entry, 0, rangeTotal);
    }
    return entry;
}

void RangeOfMillion(benchmark::State &state)
{
    const auto query = largeEntry()->getQueryInterface();
    quint64 first = 0;
    for (auto _ : state) {
        const auto found = query->getElementsInRange(first, first + rangeLength - 1, ActivationMask::All,
                                                     Interfaces::ElementListFilter());
        if (found.size() != rangeLength)
            state.SkipWithError("the range has another length");
        first = (first + 7919) % (rangeTotal - rangeLength);
    }
    state.counters["aim"] = 5;
}
BENCHMARK(RangeOfMillion)->UseRealTime()->Unit(benchmark::kMicrosecond);

void RangeOfMillion_Floor(benchmark::State &state)
{
    const QTemporaryDir folder;
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("floor"));
    database.setDatabaseName(folder.filePath(QStringLiteral("floor.sqlite")));
    database.open();
    QSqlQuery query(database);
    query.exec(QStringLiteral("CREATE TABLE elements (uuid TEXT, stamp INTEGER, value REAL)"));
    query.exec(QStringLiteral("CREATE INDEX stamps ON elements (stamp)"));
    database.transaction();
    query.prepare(QStringLiteral("INSERT INTO elements VALUES (?, ?, ?)"));
    for (int i = 0; i < rangeTotal; ++i) {
        query.addBindValue(QString::number(i));
        query.addBindValue(i);
        query.addBindValue(double(i));
        query.exec();
    }
    database.commit();
    query.prepare(QStringLiteral("SELECT uuid, stamp, value FROM elements WHERE stamp BETWEEN ? AND ?"));
    query.setForwardOnly(true);
    int first = 0;
    for (auto _ : state) {
        query.addBindValue(first);
        query.addBindValue(first + rangeLength - 1);
        query.exec();
        while (query.next())
            benchmark::DoNotOptimize(query.value(2));
        first = (first + 7919) % (rangeTotal - rangeLength);
    }
    query.clear();
    database.close();
}
BENCHMARK(RangeOfMillion_Floor)->UseRealTime()->Unit(benchmark::kMicrosecond);

void TimeSpanOfMillion(benchmark::State &state)
{
    const auto query = largeEntry()->getQueryInterface();
    quint64 first = 0;
    quint64 last = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(query->getTimeSpan(first, last));
    if (last != rangeTotal - 1)
        state.SkipWithError("the span is wrong");
}
BENCHMARK(TimeSpanOfMillion)->UseRealTime();

void ElementOfMillion(benchmark::State &state)
{
    const auto query = largeEntry()->getQueryInterface();
    quint64 index = 0;
    for (auto _ : state) {
        const auto element = query->getElementByIndex(index);
        benchmark::DoNotOptimize(query->getElementById(element->getUuid()));
        index = (index + 7919) % rangeTotal;
    }
}
BENCHMARK(ElementOfMillion)->UseRealTime();

} // namespace
