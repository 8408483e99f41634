// What it costs to have a storage in another process: elements as they are added, and the first copy.

#include "ConnectedPeers.h"
#include "InitRun.h"
#include "RemoteFrames.h"

#include <appdata/data/entries/EntryProperties.h>
#include <appdata/interfaces/RepositoryInterface.h>

#include <QUuid>

#include <benchmark/benchmark.h>

using namespace Tessellum;
using namespace Tessellum::AppData;
using Notification::CreatePoint;
namespace Property = Tessellum::AppData::Data::Entries::EntryProperties;

namespace {

constexpr int pushCount = 2000; // a peer that has 2 MiB on the way loses some

/*! A storage that is served, with one entry; goes with this. */
class ServedStorage
{
public:
    ServedStorage()
        : repository((ServingLibrary::instance(), getCoreInterface()->getAppDataRepository()))
        , name(QStringLiteral("served%1").arg(++number))
        , port(ServingLibrary::serveStorage(name))
        , entry(repository->getDataEntryInterface()->addDataEntryExtended(
              name,
              {{Property::Classification(), QStringLiteral("bench")},
               {Property::Name(), QStringLiteral("values")},
               {Property::CategoryType(), quint32(CategoryType::Float)},
               {Property::Persistence(), quint32(PersistenceType::Persistent)},
               {Property::Capacity(), quint64(0)}}))
    { }
    ~ServedStorage()
    {
        entry.reset();
        repository->getStorageInterface()->removeStorage(name);
    }
    Q_DISABLE_COPY_MOVE(ServedStorage)

    /*! Adds so many elements; waits for each, or for none. */
    void add(qint64 count, CreatePoint point)
    {
        const auto manipulation = entry->getManipulationInterface();
        for (qint64 i = 0; i < count; ++i)
            manipulation->addDataElementValue(quint64(i), ElementValueKind::ParsedValue, double(i), point);
    }
    QString getUrl() const { return ServingLibrary::urlOf(port, name); }

private:
    inline static int number = 0;

    const std::shared_ptr<Interfaces::RepositoryInterface> repository;
    const QString name;
    const int port;
    std::shared_ptr<Interfaces::DataEntryInterface> entry;
};

/*! From the first element that is added until the last one stands in each mirror. */
void PushElements(benchmark::State &state)
{
    ServedStorage storage;
    storage.add(1, CreatePoint::Done);
    OtherProcess mirrors({QStringLiteral("storages"), storage.getUrl(), QString::number(state.range(0)),
                          QString::number(pushCount)});
    for (auto _ : state) {
        storage.add(pushCount, CreatePoint::All);
        mirrors.read();
    }
    state.counters["items"] = pushCount;
    state.counters["aim"] = 3;
}
BENCHMARK(PushElements)
    ->ArgName("clients")
    ->Arg(1)
    ->Arg(20)
    ->Iterations(5)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/*! The messages: each made once, sent to and read at every client. */
void PushElements_Floor(benchmark::State &state)
{
    const int clients = int(state.range(0));
    ConnectedPeers peers(QStringLiteral("elements"), clients,
                         {QString::number(clients), QString::number(pushCount)});
    const QString entry = QUuid::createUuid().toString();
    QStringList paths;
    for (int i = 0; i < pushCount; ++i)
        paths.append(entry + QLatin1Char('.') + QUuid::createUuid().toString());
    for (auto _ : state) {
        for (int i = 0; i < pushCount; ++i) {
            const QByteArray frame = RemoteFrames::ofElement(paths.at(i), quint64(i), double(i));
            for (QWebSocket *const socket : peers.sockets) {
                socket->sendBinaryMessage(frame);
                socket->flush(); // as a server does, whose flow control counts what has been written
            }
            goOnAfter(i);
        }
        peers.getProcess().readWithEvents();
    }
    state.counters["items"] = pushCount;
}
BENCHMARK(PushElements_Floor)
    ->ArgName("clients")
    ->Arg(1)
    ->Arg(20)
    ->Iterations(5)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/*! The first copy of a storage, until all of it stands in the other process. */
void InitElements(benchmark::State &state)
{
    ServedStorage storage;
    storage.add(state.range(0), CreatePoint::All);
    storage.add(1, CreatePoint::Done);
    measureInit(state, {QStringLiteral("loadStorage"), storage.getUrl(), QString::number(state.range(0))});
}
BENCHMARK(InitElements)
    ->Arg(10000)
    ->Arg(100000)
    ->Iterations(1)
    ->Repetitions(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
