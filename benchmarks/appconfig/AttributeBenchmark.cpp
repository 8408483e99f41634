// What an attribute costs, in time and in memory, when a list of many is created by one task.

#include <appconfig/attributes/AttributeCreateTask.h>
#include <appconfig/attributes/AttributeUpdateTask.h>
#include <appconfig/HierarchyListPattern.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QHash>

#include <benchmark/benchmark.h>
#include <malloc.h>

using namespace Tessellum::AppConfig::Attributes;
using namespace Tessellum::Notification;
using Shared::Hierarchy::HierarchyNodeInstance;
using Tessellum::Notification::utils::MakeNode;

namespace {

constexpr int GroupSize = 100;

AttributesCreateData makeList(int count)
{
    AttributesCreateData list;
    list.reserve(count);
    for (int i = 0; i < count; ++i) {
        AttributeCreateData::AttributeCreateDataDetails details;
        details.value = double(i);
        details.access = AttributeAccess::Read | AttributeAccess::Write;
        list.append(
            {QStringLiteral("settings.group%1.value%2").arg(i / GroupSize).arg(i % GroupSize), details});
    }
    return list;
}

double usedBytes()
{
    const auto info = mallinfo2();
    return double(info.uordblks + info.hblkhd);
}

/// The attributes lie on the event thread and die there.
void waitForTheDead()
{
    Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
}

void AttributeCreation(benchmark::State &state)
{
    const int count = int(state.range(0));
    const QVariant list = QVariant::fromValue(makeList(count));
    double bytes = 0;
    for (auto _ : state) {
        const auto root = MakeNode<HierarchyNodeInstance>();
        const double before = usedBytes();
        AttributeCreateTask(nullptr, root, QString(), list, CreatePoint::Done).run();
        state.PauseTiming();
        bytes = (usedBytes() - before) / count;
        for (const auto &child : root->getChildren(false))
            child->setDeleteFlag();
        waitForTheDead();
        state.ResumeTiming();
    }
    state.counters["items"] = count;
    state.counters["bytes"] = bytes;
    state.counters["aim_bytes"] = 1100;
}
BENCHMARK(AttributeCreation)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The least that holds as many values by their paths.
void AttributeCreation_Floor(benchmark::State &state)
{
    const int count = int(state.range(0));
    const AttributesCreateData list = makeList(count);
    double bytes = 0;
    for (auto _ : state) {
        const double before = usedBytes();
        QHash<QString, QVariant> values;
        for (const AttributeCreateData &data : list)
            values.insert(data.name, data.details.value);
        bytes = (usedBytes() - before) / count;
        benchmark::DoNotOptimize(values);
    }
    state.counters["items"] = count;
    state.counters["bytes"] = bytes;
}
BENCHMARK(AttributeCreation_Floor)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void AttributeRead(benchmark::State &state)
{
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), 1.5);
    for (auto _ : state) {
        QVariant value;
        benchmark::DoNotOptimize(attribute->getValue(value, QMetaType::Double));
    }
}
BENCHMARK(AttributeRead);

/// Each addition starts an update of the text of all names; those that wait share one text.
void ListAddition(benchmark::State &state)
{
    const int count = int(state.range(0));
    ThreadPool pool(
        QStringLiteral("benchmark"), {},
        [](const auto &node, const QVariant &value, auto waitPoint) {
            return std::make_unique<AttributeUpdateTask>(nullptr, node, value, waitPoint);
        },
        {}, 2, false);
    for (auto _ : state) {
        const auto list = MakeNode<Tessellum::Core::HierarchyListPattern>(&pool, QStringLiteral("list"));
        for (int i = 0; i < count; ++i)
            list->addElementToList(QStringLiteral("element%1").arg(i), i, false);
        pool.waitForDone();
    }
    state.counters["items"] = count;
}
BENCHMARK(ListAddition)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
