// What it costs to bring values into a database: by the storage alone, and by the whole library, against the
// same rows by QSqlQuery in groups of 1,000.

#include <appdata/data/entries/EntryProperties.h>
#include <appdata/interfaces/RepositoryInterface.h>
#include <core/CoreInterface.h>
#include <core/Library.h>

#include <QCoreApplication>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>
#include <QUuid>

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <optional>
#include <plugins/support/LoadedStorages.h>
#include <plugins/support/PostgresServer.h>
#include <plugins/support/StorageRecords.h>

using namespace Tessellum;
using namespace Tessellum::AppData;
using namespace TestSupport;
using Notification::CreatePoint;
namespace Property = Tessellum::AppData::Data::Entries::EntryProperties;

namespace {

constexpr double wantedRatio = 8;
constexpr int groupSize = 1000;

/*! What both engines need: an application, the library, a folder and a server. */
class Place
{
public:
    static Place &instance()
    {
        static auto *const place = new Place;
        return *place;
    }
    /*! A medium with nothing in it. */
    std::shared_ptr<StorageImplementation> makeStorage(bool postgresql)
    {
        const QString name = QStringLiteral("medium%1").arg(++number);
        return postgresql
            ? MakeStorage(QStringLiteral(POSTGRESQL_PLUGIN), QStringLiteral("postgresql"), server().url(name))
            : MakeStorage(QStringLiteral(SQLITE_PLUGIN), QStringLiteral("sqlite"), freshFile());
    }
    QString freshFile() { return folder.filePath(QStringLiteral("file%1").arg(++number)); }
    PostgresServer &server()
    {
        if (!database) {
            database = std::make_unique<PostgresServer>();
            if (!database->start())
                qFatal("the server does not start");
        }
        return *database;
    }

private:
    Place()
        : application(argumentCount, arguments)
    {
        initializeLibrary();
        std::atexit([] {
            instance().database.reset();
            instance().folder.remove();
        });
    }

    int argumentCount = 1;
    char program[6] = "bench";
    char *arguments[2] = {program, nullptr};
    QCoreApplication application;
    QTemporaryDir folder;
    std::unique_ptr<PostgresServer> database;
    int number = 0;
};

double residentBytes()
{
    QFile pages(QStringLiteral("/proc/self/statm"));
    pages.open(QIODevice::ReadOnly);
    constexpr int resident = 1, pageSize = 4096;
    return pages.readAll().split(' ').value(resident).toDouble() * pageSize;
}

QByteArray bytesOf(double value)
{
    return QByteArray(reinterpret_cast<const char *>(&value), sizeof value);
}

/*! The storage alone; ends when all is on the medium. */
void record(benchmark::State &state, bool postgresql)
{
    QStringList uuids;
    for (qint64 i = 0; i < state.range(0); ++i)
        uuids.append(QUuid::createUuid().toString());
    for (auto _ : state) {
        state.PauseTiming();
        const auto storage = Place::instance().makeStorage(postgresql);
        const QString entry = Uuid();
        if (!storage || !storage->connectStorage() || !storage->serializeEntry(entry, Record()))
            state.SkipWithError("the storage does not open");
        state.ResumeTiming();
        for (qint64 i = 0; i < state.range(0); ++i)
            storage->serializeElement(entry, uuids.at(int(i)), Values(quint64(i), bytesOf(double(i))));
        storage->disconnectStorage();
    }
    state.counters["items"] = double(state.range(0));
    state.counters["aim"] = wantedRatio;
}

/*! A storage in the running library with one entry, both of which go with it. */
class RecordedEntry
{
public:
    RecordedEntry(bool postgresql, quint64 capacity)
        : medium(Place::instance().makeStorage(postgresql))
        , repository(getCoreInterface()->getAppDataRepository()) // which the place has started
    {
        Storages::StorageCreateDataDetails details;
        details.implementation = medium;
        repository->getStorageInterface()->addStorage(QStringLiteral("bench"), name, details,
                                                      CreatePoint::Done, name);
        entry = repository->getDataEntryInterface()->addDataEntryExtended(
            name,
            {{Property::Classification(), QStringLiteral("bench")},
             {Property::Name(), QStringLiteral("values")},
             {Property::CategoryType(), quint32(CategoryType::Float)},
             {Property::Persistence(), quint32(PersistenceType::Persistent)},
             {Property::Capacity(), capacity}});
    }
    ~RecordedEntry() { repository->getStorageInterface()->removeStorage(name); }
    RecordedEntry(const RecordedEntry &) = delete;
    RecordedEntry &operator=(const RecordedEntry &) = delete;

    bool isThere() const { return entry != nullptr; }
    quint64 count() const { return entry->getQueryInterface()->countElements(ActivationMask::All); }
    void add(qint64 number, const CreatePoint &point = CreatePoint::All)
    {
        const auto manipulation = entry->getManipulationInterface();
        for (qint64 i = 0; i < number; ++i)
            manipulation->addDataElementValue(quint64(i), ElementValueKind::ParsedValue, double(i), point);
    }
    /*! Ends when all is on the medium. */
    void flush() { medium->disconnectStorage(); }

private:
    const QString name = QStringLiteral("archive");
    const std::shared_ptr<StorageImplementation> medium;
    const std::shared_ptr<Interfaces::RepositoryInterface> repository;
    std::shared_ptr<Interfaces::DataEntryInterface> entry;
};

/*! By addDataElementValue(), without waiting for each. */
void recordByLibrary(benchmark::State &state, bool postgresql)
{
    for (auto _ : state) {
        state.PauseTiming();
        std::optional<RecordedEntry> recorded(std::in_place, postgresql, 0);
        if (!recorded->isThere()) {
            state.SkipWithError("the entry is not made");
            break;
        }
        state.ResumeTiming();
        recorded->add(state.range(0));
        while (recorded->count() < quint64(state.range(0)))
            QThread::msleep(100); // counting costs more the more there are
        recorded->flush();
        state.PauseTiming();
        recorded.reset();
        state.ResumeTiming();
    }
    state.counters["items"] = double(state.range(0));
    state.counters["aim"] = wantedRatio;
}

/*! No faster than the values are taken: a queue that grows is no growth of the ring. */
void addInGroups(RecordedEntry &recorded, qint64 number)
{
    for (qint64 done = 0; done < number; done += groupSize) {
        recorded.add(groupSize - 1);
        recorded.add(1, CreatePoint::Done);
    }
}

/*! A full ring on a medium: the bytes are the growth of the resident memory for each overwrite, and have to
 * be none. */
void OverwriteRingSqlite(benchmark::State &state)
{
    constexpr int capacity = 10000;
    constexpr int warmUp = 20 * capacity;
    for (auto _ : state) {
        state.PauseTiming();
        std::optional<RecordedEntry> recorded(std::in_place, false, capacity);
        if (!recorded->isThere()) {
            state.SkipWithError("the entry is not made");
            break;
        }
        addInGroups(*recorded, warmUp);
        const double before = residentBytes();
        state.ResumeTiming();
        addInGroups(*recorded, state.range(0));
        state.PauseTiming();
        state.counters["bytes"] = (residentBytes() - before) / double(state.range(0));
        recorded.reset();
        state.ResumeTiming();
    }
    state.counters["items"] = double(state.range(0));
}
BENCHMARK(OverwriteRingSqlite)->Arg(1000000)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

/*! The rows, with stamp and value alone. */
void insertRows(benchmark::State &state, QSqlDatabase &database, const QString &table)
{
    QSqlQuery query(database);
    query.exec(QStringLiteral("CREATE TABLE %1 (stamp bigint, value double precision)").arg(table));
    query.prepare(QStringLiteral("INSERT INTO %1 (stamp, value) VALUES (?, ?)").arg(table));
    for (qint64 i = 0; i < state.range(0); ++i) {
        if (i % groupSize == 0)
            database.transaction();
        query.bindValue(0, i);
        query.bindValue(1, double(i));
        query.exec();
        if (i % groupSize == groupSize - 1)
            database.commit();
    }
}

void RecordSqlite(benchmark::State &state)
{
    record(state, false);
}
BENCHMARK(RecordSqlite)->Arg(1000000)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

void RecordByLibrarySqlite(benchmark::State &state)
{
    recordByLibrary(state, false);
}
BENCHMARK(RecordByLibrarySqlite)->Arg(1000000)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

void floorSqlite(benchmark::State &state)
{
    for (auto _ : state) {
        {
            QSqlDatabase database
                = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("floor"));
            database.setDatabaseName(Place::instance().freshFile());
            database.open();
            QSqlQuery(database).exec(QStringLiteral("PRAGMA journal_mode = WAL"));
            QSqlQuery(database).exec(QStringLiteral("PRAGMA synchronous = NORMAL"));
            insertRows(state, database, QStringLiteral("rows"));
            database.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("floor"));
    }
    state.counters["items"] = double(state.range(0));
}
BENCHMARK(floorSqlite)
    ->Name("RecordSqlite_Floor")
    ->Arg(1000000)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(floorSqlite)
    ->Name("RecordByLibrarySqlite_Floor")
    ->Arg(1000000)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void RecordPostgresql(benchmark::State &state)
{
    record(state, true);
}
BENCHMARK(RecordPostgresql)->Arg(200000)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

void RecordByLibraryPostgresql(benchmark::State &state)
{
    recordByLibrary(state, true);
}
BENCHMARK(RecordByLibraryPostgresql)
    ->Arg(200000)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void floorPostgresql(benchmark::State &state)
{
    for (auto _ : state) {
        {
            QSqlDatabase database
                = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("floor"));
            database.setHostName(Place::instance().server().folder());
            database.setDatabaseName(QStringLiteral("postgres"));
            database.setUserName(QStringLiteral("recorder"));
            database.open();
            QSqlQuery(database).exec(QStringLiteral("DROP TABLE IF EXISTS rows"));
            insertRows(state, database, QStringLiteral("rows"));
            database.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("floor"));
    }
    state.counters["items"] = double(state.range(0));
}
BENCHMARK(floorPostgresql)
    ->Name("RecordPostgresql_Floor")
    ->Arg(200000)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(floorPostgresql)
    ->Name("RecordByLibraryPostgresql_Floor")
    ->Arg(200000)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/*! An entry of the storage as a load of it asks: the ids, then the facts of each. */
void ReadElements(benchmark::State &state)
{
    const auto storage = Place::instance().makeStorage(state.range(1) != 0);
    const QString entry = Uuid();
    storage->connectStorage();
    storage->serializeEntry(entry, Record());
    for (qint64 i = 0; i < state.range(0); ++i)
        storage->serializeElement(entry, Uuid(), Values(quint64(i), bytesOf(double(i))));
    for (auto _ : state) {
        state.PauseTiming();
        storage->disconnectStorage();
        storage->connectStorage();
        state.ResumeTiming();
        QStringList uuids;
        storage->getElementIds(entry, uuids);
        for (const QString &uuid : qAsConst(uuids)) {
            ElementValues values;
            storage->deserializeElement(entry, uuid, values, LoadDataHint::OnDemand);
            benchmark::DoNotOptimize(values);
        }
    }
    state.counters["items"] = double(state.range(0));
}
BENCHMARK(ReadElements)
    ->Args({100000, 0})
    ->Args({100000, 1})
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
