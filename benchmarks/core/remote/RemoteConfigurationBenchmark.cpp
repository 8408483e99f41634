// What it costs to have a configuration in another process: the way of a change, many changes, the first
// copy.

#include "ConnectedPeers.h"
#include "InitRun.h"
#include "RemoteFrames.h"

#include <QSet>

#include <benchmark/benchmark.h>

using namespace Tessellum;
using Notification::UpdatePoint;
using RemoteFrames::RemoteCommand;

namespace {

const QString firstValue = QStringLiteral("value0");

/*! The values of the benchmarks of changes, which are made once. */
QString changedParent(int count)
{
    static QSet<int> made;
    const QString parent = QStringLiteral("changed%1").arg(count);
    if (!made.contains(count))
        ServingLibrary::createValues(parent, count);
    made.insert(count);
    return parent;
}

/*! The process that mirrors them. */
std::unique_ptr<OtherProcess> mirrorOf(const QString &parent, int every)
{
    const int port = ServingLibrary::instance().getConfigurationPort();
    return std::make_unique<OtherProcess>(
        QStringList{QStringLiteral("mirror"), ServingLibrary::urlOf(port, parent), QString::number(every)});
}

/*! From the start of an update until the handler in the other process runs. */
void ChangeLatency(benchmark::State &state)
{
    ServingLibrary::instance();
    const QString parent = changedParent(1);
    const auto mirror = mirrorOf(parent, 1);
    const auto manipulation = getCoreInterface()->getAppConfigRepository()->getManipulationInterface();
    const QString path = parent + QLatin1Char('.') + firstValue;
    static double value = 1000; // never the one that is there
    for (auto _ : state) {
        const qint64 begin = monotonicTime();
        manipulation->updateAttribute(path, value += 1, UpdatePoint::All);
        state.SetIterationTime(double(mirror->read() - begin) / 1e9);
    }
    state.counters["aim"] = 4;
}
BENCHMARK(ChangeLatency)->Iterations(2000)->UseManualTime()->Unit(benchmark::kMicrosecond);

/*! A text as long as the frame of the change there and back. */
void ChangeLatency_Floor(benchmark::State &state)
{
    ConnectedPeers peers(QStringLiteral("echo"), 1, {});
    const QString text = RemoteFrames::ofValue(RemoteCommand::Update, firstValue, 1000.5);
    bool isBack = false;
    QObject::connect(peers.sockets.front(), &QWebSocket::textMessageReceived,
                     [&isBack](const QString &) { isBack = true; });
    for (auto _ : state) {
        isBack = false;
        const qint64 begin = monotonicTime();
        peers.sockets.front()->sendTextMessage(text);
        while (!isBack)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        state.SetIterationTime(double(monotonicTime() - begin) / 1e9);
    }
}
BENCHMARK(ChangeLatency_Floor)->Iterations(2000)->UseManualTime()->Unit(benchmark::kMicrosecond);

/*! Changes all of so many attributes, without waiting for each. */
void ChangeThroughput(benchmark::State &state)
{
    ServingLibrary::instance();
    const int count = int(state.range(0));
    const QString parent = changedParent(count);
    const auto mirror = mirrorOf(parent, count);
    const auto manipulation = getCoreInterface()->getAppConfigRepository()->getManipulationInterface();
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths.append(QStringLiteral("%1.value%2").arg(parent).arg(i));
    static double value = 1000; // never the one that is there
    for (auto _ : state) {
        value += 1;
        for (const QString &path : qAsConst(paths))
            manipulation->updateAttribute(path, value, UpdatePoint::All);
        mirror->read();
    }
    state.counters["items"] = count;
    state.counters["aim"] = 3;
}
BENCHMARK(ChangeThroughput)->Arg(10000)->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);

/*! The three messages of each change: made, sent and read. */
void ChangeThroughput_Floor(benchmark::State &state)
{
    const int count = int(state.range(0));
    ConnectedPeers peers(QStringLiteral("values"), 1, {QString::number(count)});
    QWebSocket &socket = *peers.sockets.front();
    double value = 1000;
    QObject::connect(&socket, &QWebSocket::textMessageReceived, [&socket, &value](const QString &text) {
        const auto message = AppConfig::Backends::utils::ParseRemoteMessage(text);
        socket.sendTextMessage(RemoteFrames::ofValue(RemoteCommand::Write, message.path, value));
    });
    for (auto _ : state) {
        value += 1;
        for (int i = 0; i < count; ++i) {
            socket.sendTextMessage(
                RemoteFrames::ofValue(RemoteCommand::Update, QStringLiteral("value%1").arg(i), value));
            goOnAfter(i);
        }
        peers.getProcess().readWithEvents();
    }
    state.counters["items"] = count;
}
BENCHMARK(ChangeThroughput_Floor)->Arg(10000)->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);

/*! The first copy of a subtree, until all of it stands in the other process. */
void InitAttributes(benchmark::State &state)
{
    ServingLibrary &library = ServingLibrary::instance();
    const QString parent = QStringLiteral("init%1").arg(state.range(0));
    ServingLibrary::createValues(parent, int(state.range(0)));
    measureInit(state,
                {QStringLiteral("load"), ServingLibrary::urlOf(library.getConfigurationPort(), parent)});
}
BENCHMARK(InitAttributes)
    ->Arg(10000)
    ->Arg(100000)
    ->Iterations(1)
    ->Repetitions(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
