// What an application pays for one value: reads through ManagedRepository, and updates that nobody listens
// to.

#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/ManagedRepository.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/RepositoryLocks.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QMutex>
#include <QSettings>
#include <QTemporaryFile>
#include <QThreadPool>
#include <QWaitCondition>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <random>

using namespace Tessellum;
using namespace Tessellum::AppConfig;
using AppConfig::utils::RepositoryProvider;
using Notification::UpdatePoint;

namespace {

constexpr int attributeCount = 100'000;

/*! The paths section.group.value in random order. */
const QStringList &paths(QChar separator)
{
    static const auto make = [](QChar character) {
        QStringList list;
        for (int number = 0; number < attributeCount; ++number)
            list.append(QStringLiteral("section%1.group%2.value%3")
                            .arg(number / 1000)
                            .arg(number / 100 % 10)
                            .arg(number % 100)
                            .replace(QLatin1Char('.'), character));
        std::shuffle(list.begin(), list.end(), std::mt19937(1));
        return list;
    };
    static const QStringList ofTree = make(QLatin1Char('.'));
    static const QStringList ofSettings = make(QLatin1Char('/'));
    return separator == QLatin1Char('.') ? ofTree : ofSettings;
}

ManagedRepository &repository()
{
    static ManagedRepository *const made = [] {
        RepositoryProvider *const provider = RepositoryProvider::getInstance();
        RepositoryProvider::NodePtr noKeeper;
        provider->setRepositoryActive(noKeeper, false);
        for (const QString &path : paths(QLatin1Char('.'))) {
            Attributes::AttributeCreateData data;
            data.name = path;
            data.details.value = 1.5;
            data.details.access = 3;
            Attributes::CreateAttributeInHierarchy(provider->getRoot(), data);
        }
        return new ManagedRepository(std::make_shared<TessellumLocalizationInterfaceProvider>(QLocale::c()),
                                     &Core::appConfigLock());
    }();
    return *made;
}

void RepositoryGetValue(benchmark::State &state)
{
    const auto query = repository().getQueryInterface();
    const QStringList &list = paths(QLatin1Char('.'));
    int index = state.thread_index() * 1000;
    for (auto _ : state) {
        QVariant value;
        benchmark::DoNotOptimize(query->getValue(list.at(index), value, QMetaType::Double));
        benchmark::DoNotOptimize(value.toDouble());
        index = (index + 1) % attributeCount;
    }
    state.counters["aim"] = 1;
}
BENCHMARK(RepositoryGetValue)->Threads(1)->Threads(2)->UseRealTime();

void RepositoryGetValue_Floor(benchmark::State &state)
{
    static QSettings *const settings = [] {
        static QTemporaryFile file;
        file.open();
        auto *const made = new QSettings(file.fileName(), QSettings::IniFormat);
        for (const QString &path : paths(QLatin1Char('/')))
            made->setValue(path, 1.5);
        return made;
    }();
    const QStringList &list = paths(QLatin1Char('/'));
    int index = state.thread_index() * 1000;
    for (auto _ : state) {
        benchmark::DoNotOptimize(settings->value(list.at(index)).toDouble());
        index = (index + 1) % attributeCount;
    }
}
BENCHMARK(RepositoryGetValue_Floor)->Threads(1)->Threads(2)->UseRealTime();

void RepositoryUpdate(benchmark::State &state)
{
    const auto manipulation = repository().getManipulationInterface();
    const QString path = paths(QLatin1Char('.')).first();
    for (auto _ : state)
        benchmark::DoNotOptimize(manipulation->updateAttribute(path, 2.5, UpdatePoint::Done));
    state.counters["aim"] = 1.5;
}
BENCHMARK(RepositoryUpdate)->UseRealTime();

/*! One round trip to a thread of a warm pool. */
void RepositoryUpdate_Floor(benchmark::State &state)
{
    QThreadPool pool;
    QMutex mutex;
    QWaitCondition condition;
    for (auto _ : state) {
        bool done = false;
        QMutexLocker locker(&mutex);
        pool.start([&] {
            const QMutexLocker inner(&mutex);
            done = true;
            condition.wakeAll();
        });
        while (!done)
            condition.wait(&mutex);
    }
}
BENCHMARK(RepositoryUpdate_Floor)->UseRealTime();

void RepositoryStartUpdates(benchmark::State &state)
{
    repository();
    RepositoryProvider *const provider = RepositoryProvider::getInstance();
    const auto node = provider->getRoot()->findChildByRelativePath(paths(QLatin1Char('.')).first());
    const int count = int(state.range(0));
    for (auto _ : state) {
        for (int number = 0; number < count; ++number)
            provider->getThreadPool().startUpdateTask(node, number, UpdatePoint::Done);
        provider->getThreadPool().waitForDone();
    }
    state.counters["items"] = count;
    state.counters["aim"] = 4;
}
BENCHMARK(RepositoryStartUpdates)->Arg(attributeCount)->UseRealTime()->Unit(benchmark::kMillisecond);

void RepositoryStartUpdates_Floor(benchmark::State &state)
{
    QThreadPool pool;
    const int count = int(state.range(0));
    for (auto _ : state) {
        for (int number = 0; number < count; ++number)
            pool.start([] {});
        pool.waitForDone();
    }
    state.counters["items"] = count;
}
BENCHMARK(RepositoryStartUpdates_Floor)->Arg(attributeCount)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
