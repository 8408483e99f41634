#include "HierarchyTree.h"

#include <QtTest>

#include <atomic>
#include <random>
#include <support/Literals.h>
#include <thread>
#include <vector>

using namespace HierarchyTree;

namespace {

// Runs a function in several threads at once and tells whether all came back in time. Threads that hang are
// left behind with what they use, so that the test can fail instead of waiting for ever.
template <class Work>
bool comeBack(int threads, const Work &work)
{
    const auto ready = std::make_shared<QSemaphore>();
    const auto go = std::make_shared<QSemaphore>();
    const auto done = std::make_shared<QSemaphore>();
    for (int i = 0; i < threads; ++i) {
        std::thread([=] {
            ready->release();
            go->acquire();
            work(i);
            done->release();
        }).detach();
    }
    ready->acquire(threads);
    go->release(threads);
    return done->tryAcquire(threads, 60000);
}

// What must hold of a tree that nobody changes: children and parents agree, ids are unique, paths are those
// of the places, and nobody lies below himself.
bool isSound(const NodePointer &node, int depth = 0)
{
    if (depth > 100)
        return false;
    QStringList ids = idsOf(node->getChildren(false));
    if (ids.removeDuplicates() != 0 || node->getNumberOfChildren() != quint64(ids.size()))
        return false;
    for (const NodePointer &child : node->getChildren(false)) {
        const QString above = pathOf(node);
        const QString expected = above.isEmpty() ? child->getId() : above + QLatin1Char('.') + child->getId();
        if (child->getParent() != node || pathOf(child) != expected || !isSound(child, depth + 1))
            return false;
    }
    return true;
}

struct Tree
{
    NodePointer root = make();
    std::vector<NodePointer> nodes;

    explicit Tree(int count)
    {
        for (int i = 0; i < count; ++i)
            nodes.push_back(grow(root, "n%1"_s.arg(i)));
    }

    // Whether each node is where its parent says, and nowhere else.
    bool isWhole() const
    {
        int placed = 0;
        for (const NodePointer &node : nodes) {
            const NodePointer parent = node->getParent();
            if (parent && parent->getChildById(node->getId()) != node)
                return false;
            placed += parent && node->getRootNode() == root ? 1 : 0;
        }
        return root->getChildren(true).size() == placed && isSound(root);
    }
};

} // namespace

class HierarchyMoveTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void twoThatMoveBelowEachOther()
    {
        for (int round = 0; round < 300; ++round) {
            const auto tree = std::make_shared<Tree>(2);
            const auto moved = std::make_shared<std::atomic<int>>(0);
            const auto work = [tree, moved](int i) {
                if (tree->nodes[size_t(i)]->setParent(tree->nodes[size_t(1 - i)], false))
                    ++*moved;
            };
            QVERIFY2(comeBack(2, work), "the moves hang");
            QCOMPARE(moved->load(), 1);
            QVERIFY(tree->isWhole());
        }
    }

    void manyAddOneId()
    {
        for (int round = 0; round < 200; ++round) {
            const auto tree = std::make_shared<Tree>(0);
            const auto added = std::make_shared<std::atomic<int>>(0);
            const auto work = [tree, added](int) {
                if (tree->root->addChild(make("a"_s)))
                    ++*added;
            };
            QVERIFY2(comeBack(4, work), "the additions hang");
            QCOMPARE(added->load(), 1);
            QCOMPARE(tree->root->getNumberOfChildren(), quint64(1));
            QVERIFY(isSound(tree->root));
        }
    }

    void randomMoves()
    {
        const auto tree = std::make_shared<Tree>(12);
        const auto work = [tree](int i) {
            std::mt19937 random{uint(i)};
            const auto any = [&] { return tree->nodes[random() % tree->nodes.size()]; };
            for (int round = 0; round < 4000; ++round) {
                switch (random() % 6) {
                case 0:
                    any()->setParent(tree->root, false);
                    break;
                case 1:
                    any()->setParent({}, false);
                    break;
                case 2: {
                    const NodePointer node = any();
                    const NodePointer parent = any();
                    if (node->getParent() != parent)
                        parent->addChild(node);
                    break;
                }
                case 3:
                    tree->root->getChildren(true);
                    tree->root->queryChildren<HierarchyNode>("*.n1*"_s);
                    break;
                default:
                    any()->setParent(any(), false);
                    pathOf(any());
                }
            }
        };
        QVERIFY2(comeBack(4, work), "the moves hang");
        for (const NodePointer &node : tree->nodes) // bring back what hangs below nothing
            node->setParent(tree->root, false);
        QVERIFY(tree->isWhole());
        QCOMPARE(tree->root->getNumberOfChildren(), quint64(tree->nodes.size()));
    }
};

QTEST_GUILESS_MAIN(HierarchyMoveTest)
#include "HierarchyMoveTest.moc"
