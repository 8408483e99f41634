// What a task, a notification and a search for handlers cost, beside bare runnables on a bare pool.

#include <notification/ThreadPool.h>
#include <notification/utils/MakeNode.h>
#include <notification/utils/NotificationProvider.h>
#include <notification/utils/NotifyExaminers.h>
#include <notification/utils/PoolWait.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QCoreApplication>
#include <QSemaphore>

#include <benchmark/benchmark.h>
#include <vector>

using namespace Tessellum::Notification;
using Shared::Hierarchy::HierarchyNodeInstance;
using utils::MakeNode;
using utils::NotificationProvider;
using Registration = std::shared_ptr<ExaminerRegistration<UpdatePoint>>;

namespace {

/// Walks through the points of an update and does nothing else.
class PointsTask : public UpdateTask
{
public:
    PointsTask(const Registration &registration, const ThreadPool::NodePointer &target,
               const QVariant &newValue, UpdatePoint waitPoint)
        : UpdateTask(target, newValue)
        , observer(std::make_shared<UpdateObserver>(
              [waitPoint](const ResultType &report) { return ReachesWaitPoint(waitPoint, report); },
              [this](const ResultType &report) {
                  utils::NotifyExaminers(examiners, node, report.first, report.second, QVariant(), value);
              }))
        , examiners(registration)
    { }

    ResultType runUpdate() override
    {
        for (const auto point : {UpdatePoint::Check, UpdatePoint::Apply, UpdatePoint::Done})
            observer->report({point, UpdateResult::Ok});
        return observer->getResult();
    }
    std::shared_ptr<UpdateObserver> getObserver() override { return observer; }

private:
    const std::shared_ptr<UpdateObserver> observer;
    const Registration examiners;
};

/// Nodes live on an event thread, which works beside an application object alone.
void NeedApplication()
{
    static int count = 1;
    static char name[] = "NotificationBenchmark";
    static char *arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
}

/// A node, the handlers' table and the pool of a repository, started once.
struct Repository
{
    Repository()
        : pool(
            QStringLiteral("Benchmark"), {},
            [this](const ThreadPool::NodePointer &target, const QVariant &value, UpdatePoint waitPoint) {
                return std::make_unique<PointsTask>(provider.getUpdateRegistration(), target, value,
                                                    waitPoint);
            },
            {}, QThread::idealThreadCount(), false)
    {
        NeedApplication();
        root->addChild(node);
    }

    NotificationProvider provider;
    const std::shared_ptr<HierarchyNodeInstance> root = MakeNode<HierarchyNodeInstance>();
    const std::shared_ptr<HierarchyNodeInstance> node
        = MakeNode<HierarchyNodeInstance>(QStringLiteral("speed"));
    ThreadPool pool;
};

class EmptyRunnable : public QRunnable
{
public:
    void run() override { }
};

/// The least that a waiting caller needs; one object serves all starts.
class WakingRunnable : public QRunnable
{
public:
    WakingRunnable() { setAutoDelete(false); }
    void run() override
    {
        const QMutexLocker locker(&mutex);
        done = true;
        condition.wakeAll();
    }
    void wait()
    {
        const QMutexLocker locker(&mutex);
        while (!done)
            condition.wait(&mutex);
        done = false;
    }

private:
    QMutex mutex;
    QWaitCondition condition;
    bool done = false;
};

void SynchronousUpdate_Floor(benchmark::State &state)
{
    WakingRunnable runnable; // outlives the pool's threads
    QThreadPool pool;
    for (auto _ : state) {
        pool.start(&runnable);
        runnable.wait();
    }
}

void SynchronousUpdate(benchmark::State &state)
{
    Repository repository;
    for (auto _ : state)
        utils::WaitForTask(repository.pool,
                           repository.pool.startUpdateTask(repository.node, 1.5, UpdatePoint::Done));
    state.counters["aim"] = 1.5;
}

void StartedUpdates_Floor(benchmark::State &state)
{
    QThreadPool pool;
    for (auto _ : state) {
        for (auto i = state.range(0); i > 0; --i)
            pool.start(new EmptyRunnable);
        pool.waitForDone();
    }
    state.counters["items"] = double(state.range(0));
}

void StartUpdates(benchmark::State &state, Repository &repository)
{
    for (auto _ : state) {
        for (auto i = state.range(0); i > 0; --i)
            repository.pool.startUpdateTask(repository.node, 1.5, UpdatePoint::Done);
        repository.pool.waitForDone();
        NotificationThreadPool().waitForDone();
    }
    state.counters["items"] = double(state.range(0));
}

void StartedUpdates(benchmark::State &state)
{
    Repository repository;
    StartUpdates(state, repository);
    state.counters["aim"] = 4;
}

void StartedUpdatesWithHandler(benchmark::State &state)
{
    Repository repository;
    std::atomic<qint64> heard = 0;
    const auto handle = repository.provider.registerUpdateHandler(
        QStringLiteral("speed"), [&](const auto &...) { ++heard; }, UpdatePoint::Done);
    StartUpdates(state, repository);
    state.counters["aim"] = 8;
    if (heard != qint64(state.iterations()) * state.range(0))
        state.SkipWithError("not every notification was delivered");
}

void Search(benchmark::State &state, const QString &path)
{
    NotificationProvider provider;
    std::vector<NotificationProvider::HandlePointer> handles;
    for (int i = 0; i < state.range(0); ++i) {
        const QString number = QString::number(i);
        const QString registered = i % 10 == 0 ? QStringLiteral("plant.line") + number + QStringLiteral(".*")
                                               : QStringLiteral("plant.line.motor") + number;
        handles.push_back(provider.registerUpdateHandler(registered, UpdateHandler(), UpdatePoint::Done));
    }
    const auto registration = provider.getUpdateRegistration();
    for (auto _ : state)
        benchmark::DoNotOptimize(registration->getExaminers(path, UpdatePoint::Done, 1));
}

void SearchHandlersNobody(benchmark::State &state)
{
    Search(state, QStringLiteral("plant.other.motor1"));
}

void SearchHandlersByPath(benchmark::State &state)
{
    Search(state, QStringLiteral("plant.line.motor101"));
}

void SearchHandlersByWildcard(benchmark::State &state)
{
    Search(state, QStringLiteral("plant.line100.motor7"));
}

void DiscardedTasks(benchmark::State &state)
{
    Repository repository;
    QSemaphore mayGo;
    class Blocker : public QRunnable
    {
    public:
        explicit Blocker(QSemaphore &semaphore)
            : mayGo(semaphore)
        { }
        void run() override { mayGo.acquire(); }

    private:
        QSemaphore &mayGo;
    };
    QThreadPool &bare = repository.pool;
    for (int i = 0; i < ThreadPool::MaximumThreadCount(); ++i)
        bare.start(new Blocker(mayGo));
    for (auto _ : state) {
        for (auto i = state.range(0); i > 0; --i)
            repository.pool.startUpdateTask(repository.node, 1.5, UpdatePoint::Done);
        repository.pool.clear();
    }
    mayGo.release(ThreadPool::MaximumThreadCount());
    state.counters["items"] = double(state.range(0));
}

void MakeNode_Floor(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(std::make_shared<HierarchyNodeInstance>(QStringLiteral("speed")));
}

void MakeNode_OnEventThread(benchmark::State &state)
{
    NeedApplication();
    std::vector<std::shared_ptr<HierarchyNodeInstance>> nodes;
    nodes.reserve(size_t(state.max_iterations));
    for (auto _ : state)
        nodes.push_back(MakeNode<HierarchyNodeInstance>(QStringLiteral("speed")));
}

BENCHMARK(SynchronousUpdate_Floor)->UseRealTime();
BENCHMARK(SynchronousUpdate)->UseRealTime();
BENCHMARK(StartedUpdates_Floor)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(StartedUpdates)->Arg(10000)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(StartedUpdatesWithHandler)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(DiscardedTasks)->Arg(10000)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SearchHandlersNobody)->Arg(100)->Arg(10000);
BENCHMARK(SearchHandlersByPath)->Arg(100)->Arg(10000);
BENCHMARK(SearchHandlersByWildcard)->Arg(100)->Arg(10000);
BENCHMARK(MakeNode_Floor);
BENCHMARK(MakeNode_OnEventThread);

} // namespace
