// What a log line costs, beside what it is made of (an empty stream, the bare semaphore) and beside another
// logger.

#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>

#include <QMutex>
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

void FloorEmptyTextStream(benchmark::State &state)
{
    for (auto _ : state) {
        QTextStream stream;
        benchmark::DoNotOptimize(&stream);
    }
}
BENCHMARK(FloorEmptyTextStream);

void FloorSemaphorePair(benchmark::State &state)
{
    QSystemSemaphore semaphore(QStringLiteral("Shared::Logging::LoggingBenchmark"), 1,
                               QSystemSemaphore::Create);
    for (auto _ : state) {
        semaphore.acquire();
        semaphore.release();
    }
}
BENCHMARK(FloorSemaphorePair);

void ReadyTextBelowThreshold(benchmark::State &state)
{
    const LogStreamProvider provider = FrameworkLog();
    for (auto _ : state)
        LogHandler::LogMessage(provider, LogMessageType::debug, text);
}
BENCHMARK(ReadyTextBelowThreshold)->ThreadRange(1, 2);

void StreamedLineBelowThreshold(benchmark::State &state)
{
    int value = 0;
    for (auto _ : state)
        FrameworkLog().debug() << "HierarchyNodeInstance::addChild() called for child " << ++value;
}
BENCHMARK(StreamedLineBelowThreshold);

void PeerBelowThreshold(benchmark::State &state)
{
    spdlog::logger logger("peer", std::make_shared<spdlog::sinks::null_sink_mt>());
    int value = 0;
    for (auto _ : state)
        logger.debug("HierarchyNodeInstance::addChild() called for child {}", ++value);
}
BENCHMARK(PeerBelowThreshold);

void ReadyTextToStandardError(benchmark::State &state)
{
    const SilentStandardError silent;
    const LogStreamProvider provider = FrameworkLog();
    for (auto _ : state)
        LogHandler::LogMessage(provider, LogMessageType::warning, text);
}
BENCHMARK(ReadyTextToStandardError);

void StreamedLineToStandardError(benchmark::State &state)
{
    const SilentStandardError silent;
    int value = 0;
    for (auto _ : state)
        FrameworkLog().warning() << "HierarchyNodeInstance::addChild() called for child " << ++value;
}
BENCHMARK(StreamedLineToStandardError);

void PeerToStandardError(benchmark::State &state)
{
    const SilentStandardError silent;
    spdlog::logger logger("peer", std::make_shared<spdlog::sinks::stderr_sink_mt>());
    logger.set_pattern("[%n %l] %v");
    int value = 0;
    for (auto _ : state)
        logger.warn("HierarchyNodeInstance::addChild() called for child {}", ++value);
}
BENCHMARK(PeerToStandardError);

} // namespace

BENCHMARK_MAIN();
