#include <appconfig/utils/RepositoryProvider.h>
#include <core/Library.h>

#include <QCoreApplication>
#include <QMutex>
#include <QRunnable>
#include <QSemaphore>
#include <QSettings>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QWaitCondition>

#include <benchmark/benchmark.h>

using namespace Tessellum;
using Notification::CreatePoint;
using Notification::UpdatePoint;

namespace {

constexpr int valueCount = 100000;

QStringList valuePaths(QLatin1Char separator)
{
    QStringList paths;
    for (int i = 0; i < valueCount; ++i)
        paths.append(QStringLiteral("bench%1group%2%1value%3").arg(separator).arg(i / 1000).arg(i % 1000));
    return paths;
}

/*! The library running with 100,000 attributes; one for all benchmarks, as in an application. */
class RunningLibrary
{
public:
    RunningLibrary()
        : application(argumentCount, arguments)
    {
        initializeLibrary();
        repository = getCoreInterface()->getAppConfigRepository();
        AppConfig::Attributes::AttributesCreateData list;
        for (const QString &path : paths) {
            AppConfig::Attributes::AttributeCreateData::AttributeCreateDataDetails details;
            details.value = 1.5;
            details.access = 3;
            list.append(AppConfig::Attributes::AttributeCreateData(path, details));
        }
        auto &pool = AppConfig::utils::RepositoryProvider::getInstance()->getThreadPool();
        pool.startCreateTask(AppConfig::utils::RepositoryProvider::getInstance()->getRoot(), QString(),
                             QVariant::fromValue(list), CreatePoint::Done)
            ->wait();
    }

    static RunningLibrary &instance()
    {
        static auto *const library = new RunningLibrary;
        return *library;
    }

    const QStringList paths = valuePaths(QLatin1Char('.'));
    std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> repository;

private:
    int argumentCount = 1;
    char name[6] = "bench";
    char *arguments[2] = {name, nullptr};
    QCoreApplication application;
};

/*! The same number of keys in a settings file. */
class SettingsFile
{
public:
    SettingsFile()
        : settings(folder.filePath(QStringLiteral("values.ini")), QSettings::IniFormat)
    {
        for (const QString &key : keys)
            settings.setValue(key, 1.5);
        settings.sync();
    }

    static SettingsFile &instance()
    {
        static SettingsFile file;
        return file;
    }

    const QStringList keys = valuePaths(QLatin1Char('/'));
    QTemporaryDir folder;
    QSettings settings;
};

void GetValue(benchmark::State &state)
{
    RunningLibrary &library = RunningLibrary::instance();
    const auto query = library.repository->getQueryInterface();
    int next = state.thread_index() * 7919;
    QVariant value;
    for (auto _ : state) {
        query->getValue(library.paths.at(next), value, QMetaType::Double);
        benchmark::DoNotOptimize(value.toDouble());
        next = (next + 7919) % valueCount;
    }
    state.counters["aim"] = benchmark::Counter(1, benchmark::Counter::kAvgThreads);
}
BENCHMARK(GetValue)->UseRealTime();
BENCHMARK(GetValue)->Threads(2)->UseRealTime();

void GetValue_Floor(benchmark::State &state)
{
    SettingsFile &file = SettingsFile::instance();
    // One object for each thread, as Qt asks for; they share what was read of the file.
    const QSettings settings(file.settings.fileName(), QSettings::IniFormat);
    int next = state.thread_index() * 7919;
    for (auto _ : state) {
        benchmark::DoNotOptimize(settings.value(file.keys.at(next)).toDouble());
        next = (next + 7919) % valueCount;
    }
}
BENCHMARK(GetValue_Floor)->UseRealTime();
BENCHMARK(GetValue_Floor)->Threads(2)->UseRealTime();

void SynchronousUpdate(benchmark::State &state)
{
    RunningLibrary &library = RunningLibrary::instance();
    const auto manipulation = library.repository->getManipulationInterface();
    double value = 0;
    for (auto _ : state)
        manipulation->updateAttribute(library.paths.first(), value += 1, UpdatePoint::Done);
    state.counters["aim"] = 1.5;
}
BENCHMARK(SynchronousUpdate)->UseRealTime();

void SynchronousUpdate_Floor(benchmark::State &state)
{
    struct RoundTrip : QRunnable
    {
        void run() override
        {
            const QMutexLocker locker(&mutex);
            done = true;
            condition.wakeAll();
        }
        QMutex mutex;
        QWaitCondition condition;
        bool done = false;
    };
    QThreadPool pool;
    pool.setMaxThreadCount(2);
    RoundTrip trip;
    trip.setAutoDelete(false);
    for (auto _ : state) {
        trip.done = false;
        pool.start(&trip);
        QMutexLocker locker(&trip.mutex);
        while (!trip.done)
            trip.condition.wait(&trip.mutex);
    }
    pool.waitForDone();
}
BENCHMARK(SynchronousUpdate_Floor)->UseRealTime();

void startUpdates(benchmark::State &state)
{
    RunningLibrary &library = RunningLibrary::instance();
    auto *const provider = AppConfig::utils::RepositoryProvider::getInstance();
    auto &pool = provider->getThreadPool();
    const auto node = provider->getRoot()->findChildByRelativePath(library.paths.first());
    const QVariant value(2.5);
    for (auto _ : state) {
        for (int i = 0; i < state.range(0); ++i)
            pool.startUpdateTask(node, value, UpdatePoint::Done);
        pool.waitForDone();
    }
    state.counters["items"] = static_cast<double>(state.range(0));
}

void StartedUpdates(benchmark::State &state)
{
    startUpdates(state);
    state.counters["aim"] = 4;
}
BENCHMARK(StartedUpdates)->Arg(10000)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);

void StartedUpdatesWithHandler(benchmark::State &state)
{
    RunningLibrary &library = RunningLibrary::instance();
    std::atomic<qint64> heard{0};
    auto handle = library.repository->getNotificationInterface()->registerUpdateHandler(
        library.paths.first(),
        [&heard](const QString &, const UpdatePoint &, const Notification::UpdateResult &, const QVariant &,
                 const QVariant &) { ++heard; },
        UpdatePoint::Done);
    startUpdates(state);
    const qint64 expected = static_cast<qint64>(state.iterations()) * state.range(0);
    while (heard < expected)
        QThread::yieldCurrentThread();
    state.counters["aim"] = 8;
}
BENCHMARK(StartedUpdatesWithHandler)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);

void startRunnables(benchmark::State &state)
{
    struct Nothing : QRunnable
    {
        void run() override { }
    };
    QThreadPool pool;
    pool.setMaxThreadCount(2);
    for (auto _ : state) {
        for (int i = 0; i < state.range(0); ++i)
            pool.start(new Nothing);
        pool.waitForDone();
    }
    state.counters["items"] = static_cast<double>(state.range(0));
}

void StartedUpdates_Floor(benchmark::State &state)
{
    startRunnables(state);
}
BENCHMARK(StartedUpdates_Floor)->Arg(10000)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);

void StartedUpdatesWithHandler_Floor(benchmark::State &state)
{
    startRunnables(state);
}
BENCHMARK(StartedUpdatesWithHandler_Floor)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);

void QueryBeneath(benchmark::State &state)
{
    RunningLibrary &library = RunningLibrary::instance();
    const auto query = library.repository->getQueryInterface();
    for (auto _ : state)
        benchmark::DoNotOptimize(query->queryAttributes(QStringLiteral("bench.*")).size());
    state.counters["items"] = valueCount;
}
BENCHMARK(QueryBeneath)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
