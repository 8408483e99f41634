#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QHash>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <random>
#include <vector>

using namespace Shared::Hierarchy;

namespace {

using NodePointer = std::shared_ptr<HierarchyNode>;

NodePointer makeNode(const QString &id)
{
    return NodePointer(new HierarchyNodeInstance(id), &HierarchyNode::Release);
}

QStringList makeIds(int count)
{
    QStringList ids;
    for (int i = 0; i < count; ++i)
        ids.append(QStringLiteral("value%1").arg(i));
    return ids;
}

NodePointer makeFlatTree(const QStringList &ids)
{
    const NodePointer root = makeNode(QString());
    for (const QString &id : ids)
        root->addChild(makeNode(id));
    return root;
}

// Three levels with 100 x 10 x 100 leaves, the shape of a configuration.
struct ThreeLevels
{
    ThreeLevels()
        : root(makeNode(QString()))
    {
        for (int i = 0; i < 100; ++i) {
            const NodePointer section = makeNode(QStringLiteral("section%1").arg(i));
            root->addChild(section);
            for (int j = 0; j < 10; ++j) {
                const NodePointer group = makeNode(QStringLiteral("group%1").arg(j));
                section->addChild(group);
                for (int k = 0; k < 100; ++k) {
                    const NodePointer leaf = makeNode(QStringLiteral("value%1").arg(k));
                    group->addChild(leaf);
                    paths.append(QStringLiteral("section%1.group%2.value%3").arg(i).arg(j).arg(k));
                }
            }
        }
        std::shuffle(paths.begin(), paths.end(), std::mt19937(1));
    }

    NodePointer root;
    QStringList paths;
};

void countItems(benchmark::State &state)
{
    state.counters["items"] = double(state.range(0));
}

void CreateNodes(benchmark::State &state)
{
    const QStringList ids = makeIds(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(makeFlatTree(ids));
    countItems(state);
    state.counters["aim_ns"] = 1000;
}
BENCHMARK(CreateNodes)->Arg(1000)->Arg(100000);

// What an object of Qt in a shared pointer and a hash costs.
void CreateNodes_Floor(benchmark::State &state)
{
    const QStringList ids = makeIds(int(state.range(0)));
    for (auto _ : state) {
        QHash<QString, std::shared_ptr<QObject>> hash;
        for (const QString &id : ids)
            hash.insert(id, std::shared_ptr<QObject>(new QObject));
        benchmark::DoNotOptimize(hash);
    }
    countItems(state);
}
BENCHMARK(CreateNodes_Floor)->Arg(1000)->Arg(100000);

void NodeMemory(benchmark::State &state)
{
    const auto inUse = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
    const QStringList ids = makeIds(int(state.range(0)));
    for (auto _ : state) {
        const auto before = inUse();
        const NodePointer root = makeFlatTree(ids);
        state.counters["bytes"] = double(inUse() - before) / double(state.range(0));
    }
    countItems(state);
}
BENCHMARK(NodeMemory)->Arg(100000)->Iterations(1);

const ThreeLevels &threeLevels()
{
    static const ThreeLevels tree;
    return tree;
}

void FindThreeElements(benchmark::State &state)
{
    const std::shared_ptr<const HierarchyNode> root = threeLevels().root;
    const QStringList &paths = threeLevels().paths;
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(root->findChildByRelativePath(paths.at(next)));
        next = (next + 1) % paths.size();
    }
}
BENCHMARK(FindThreeElements)->Threads(1);
BENCHMARK(FindThreeElements)->Threads(2)->UseRealTime();

// One look-up of the whole path in one hash.
void FindThreeElements_Floor(benchmark::State &state)
{
    const QStringList &paths = threeLevels().paths;
    QHash<QString, NodePointer> hash;
    for (const QString &path : paths)
        hash.insert(path, threeLevels().root->findChildByRelativePath(path));
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(hash.value(paths.at(next)));
        next = (next + 1) % paths.size();
    }
}
BENCHMARK(FindThreeElements_Floor);

// Among few and among many children.
void FindChild(benchmark::State &state)
{
    QStringList ids = makeIds(int(state.range(0)));
    const NodePointer root = makeFlatTree(ids);
    std::shuffle(ids.begin(), ids.end(), std::mt19937(1));
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(root->findChildByRelativePath(ids.at(next)));
        next = (next + 1) % ids.size();
    }
}
BENCHMARK(FindChild)->Arg(1000)->Arg(100000);

void RemoveInRandomOrder(benchmark::State &state)
{
    const QStringList ids = makeIds(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        const NodePointer root = makeFlatTree(ids);
        QList<NodePointer> nodes = root->getChildren(false);
        std::shuffle(nodes.begin(), nodes.end(), std::mt19937(1));
        state.ResumeTiming();
        for (const NodePointer &node : qAsConst(nodes))
            node->setDeleteFlag();
        state.PauseTiming();
        nodes.clear();
        state.ResumeTiming();
    }
    countItems(state);
}
BENCHMARK(RemoveInRandomOrder)->Arg(1000)->Arg(100000);

void QueryChildren(benchmark::State &state, const char *pattern)
{
    const NodePointer root = makeNode(QString());
    const NodePointer parent = makeNode(QStringLiteral("a"));
    root->addChild(parent);
    for (const QString &id : makeIds(int(state.range(0))))
        parent->addChild(makeNode(id));
    for (auto _ : state)
        benchmark::DoNotOptimize(root->queryChildren<HierarchyNode>(QString::fromLatin1(pattern)));
    countItems(state);
}
BENCHMARK_CAPTURE(QueryChildren, everything, "a.*")->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(QueryChildren, pattern, "a.*9")->Arg(1000)->Arg(100000);

// A subtree of 1,010 nodes changes its place, and one leaf is asked for its path.
void MoveSubtree(benchmark::State &state)
{
    const ThreeLevels tree;
    const NodePointer moved = tree.root->getChildById(QStringLiteral("section1"));
    const NodePointer places[] = {tree.root->getChildById(QStringLiteral("section2")),
                                  tree.root->getChildById(QStringLiteral("section3"))};
    const NodePointer leaf = moved->findChildByRelativePath(QStringLiteral("group1.value1"));
    int next = 0;
    for (auto _ : state) {
        moved->setParent(places[next], false);
        benchmark::DoNotOptimize(leaf->getNodePath()->getFullPath());
        next = 1 - next;
    }
}
BENCHMARK(MoveSubtree);

} // namespace
