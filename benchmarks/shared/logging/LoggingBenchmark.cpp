// What a log line costs, beside what it is made of (an empty stream, the bare semaphore) and beside another
// logger.

#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>
#include <shared/logging/utils/StackWalker.h>

#include <QSystemSemaphore>
#include <QTextStream>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <unistd.h>

using namespace Shared::Logging;

namespace {

/// Standard error leads nowhere within the scope, so that a terminal's speed is not what is measured.
class SilentStandardError
{
public:
    SilentStandardError()
        : kept(dup(STDERR_FILENO))
    {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~SilentStandardError()
    {
        dup2(kept, STDERR_FILENO);
        close(kept);
    }
    Q_DISABLE_COPY(SilentStandardError)

private:
    const int kept;
};

const QString text
    = QStringLiteral("HierarchyNodeInstance::addChild() called with an id that is there already");

void BelowThreshold(benchmark::State &state)
{
    const LogStreamProvider provider = FrameworkLog();
    for (auto _ : state)
        LogHandler::LogMessage(provider, LogMessageType::debug, text);
    state.counters["aim_ns"] = 20;
}
BENCHMARK(BelowThreshold)->UseRealTime();

void StreamedBelowThreshold(benchmark::State &state)
{
    int value = 0;
    for (auto _ : state)
        FrameworkLog().debug() << "HierarchyNodeInstance::addChild() called for child " << ++value;
    state.counters["aim"] = 8;
}
BENCHMARK(StreamedBelowThreshold)->UseRealTime();

void StreamedBelowThreshold_Floor(benchmark::State &state)
{
    for (auto _ : state) {
        QTextStream stream;
        benchmark::DoNotOptimize(&stream);
    }
}
BENCHMARK(StreamedBelowThreshold_Floor)->UseRealTime();

void StreamedBelowThreshold_Peer(benchmark::State &state)
{
    spdlog::logger logger("peer", std::make_shared<spdlog::sinks::null_sink_mt>());
    int value = 0;
    for (auto _ : state)
        logger.debug("HierarchyNodeInstance::addChild() called for child {}", ++value);
}
BENCHMARK(StreamedBelowThreshold_Peer)->UseRealTime();

void LineToStandardError(benchmark::State &state)
{
    const SilentStandardError silent;
    const LogStreamProvider provider = FrameworkLog();
    for (auto _ : state)
        LogHandler::LogMessage(provider, LogMessageType::warning, text);
    state.counters["aim"] = 3;
}
BENCHMARK(LineToStandardError)->UseRealTime();

void LineToStandardError_Floor(benchmark::State &state)
{
    QSystemSemaphore semaphore(QStringLiteral("Shared::Logging::LoggingBenchmark"), 1,
                               QSystemSemaphore::Create);
    for (auto _ : state) {
        semaphore.acquire();
        semaphore.release();
    }
}
BENCHMARK(LineToStandardError_Floor)->UseRealTime();

void LineToStandardError_Peer(benchmark::State &state)
{
    const SilentStandardError silent;
    spdlog::logger logger("peer", std::make_shared<spdlog::sinks::stderr_sink_mt>());
    logger.set_pattern("[%n %l] %v");
    for (auto _ : state)
        logger.warn("HierarchyNodeInstance::addChild() called with an id that is there already");
}
BENCHMARK(LineToStandardError_Peer)->UseRealTime();

/// Calls work with so many frames more on the stack.
template <class Work>
Q_NEVER_INLINE int Deeper(int frames, const Work &work)
{
    if (frames == 0) {
        work();
        return 0;
    }
    // What follows the call keeps the frame on the stack.
    return qMax(frames, Deeper(frames - 1, work));
}

void StackTraceOf30Frames(benchmark::State &state)
{
    utils::StackWalker::StackWalker walker;
    const int frames = walker.getStackOutput().size();
    Deeper(30 - frames, [&] {
        for (auto _ : state)
            benchmark::DoNotOptimize(walker.getStackOutput());
        state.counters["frames"] = walker.getStackOutput().size();
    });
    state.counters["aim_ns"] = 2e6;
}
BENCHMARK(StackTraceOf30Frames)->UseRealTime();

} // namespace
