// The same changes by Qt Remote Objects: a property and its replica in another process.

#include "ConnectedPeers.h"
#include "OtherProcess.h"
#include "RemoteValue.h"

#include <QRemoteObjectHost>

#include <benchmark/benchmark.h>

namespace {

/*! The property, and the process with its replica. */
class Replicated
{
public:
    explicit Replicated(int every)
    {
        ServingLibrary::instance(); // for the events
        if (!host.setHostUrl(QUrl(QStringLiteral("tcp://127.0.0.1:0")))
            || !host.enableRemoting(&object, QStringLiteral("value")))
            qFatal("the object is not there for others");
        process = std::make_unique<OtherProcess>(
            QStringList{QStringLiteral("replica"), host.hostUrl().toString(), QString::number(every)});
    }

    RemoteValue object;
    std::unique_ptr<OtherProcess> process;

private:
    QRemoteObjectHost host;
};

void ChangeLatency_Peer(benchmark::State &state)
{
    Replicated replicated(1);
    double value = 0;
    for (auto _ : state) {
        const qint64 begin = monotonicTime();
        replicated.object.setValue(value += 1);
        state.SetIterationTime(double(replicated.process->readWithEvents() - begin) / 1e9);
    }
}
BENCHMARK(ChangeLatency_Peer)->Iterations(2000)->UseManualTime()->Unit(benchmark::kMicrosecond);

void ChangeThroughput_Peer(benchmark::State &state)
{
    const int count = int(state.range(0));
    Replicated replicated(count);
    double value = 0;
    for (auto _ : state) {
        for (int i = 0; i < count; ++i) {
            replicated.object.setValue(value += 1);
            goOnAfter(i);
        }
        replicated.process->readWithEvents();
    }
    state.counters["items"] = count;
}
BENCHMARK(ChangeThroughput_Peer)->Arg(10000)->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
