#include "HierarchyTree.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <random>
#include <support/LogCapture.h>
#include <thread>

using namespace HierarchyTree;

namespace {

// Notes the thread of its end.
class Mortal : public HierarchyNodeInstance
{
public:
    Mortal(const QString &id, QThread **diedOn, QSemaphore *died)
        : HierarchyNodeInstance(id)
        , place(diedOn)
        , ended(died)
    { }
    ~Mortal() override
    {
        *place = QThread::currentThread();
        ended->release();
    }

private:
    QThread **const place;
    QSemaphore *const ended;
};

// Refuses every child.
class Closed : public HierarchyNodeInstance
{
public:
    using HierarchyNodeInstance::HierarchyNodeInstance;
    bool addChild(const NodePointer &, quint64 *) override { return false; }
};

} // namespace

class HierarchyNodeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addsInOrder();
    void refusesTakenIds();
    void refusesEmptyIdAndForeignNodes();
    void addsFromInsideNotifications();
    void movesBetweenParents();
    void refusedMoveLeavesNoParent();
    void refusesItselfAndDescendants();
    void pathsFollowMoves();
    void pathMadeAfterTheMove();
    void pathChangedOncePerNode();
    void pathChangedOfAMoveInsideAPathChange();
    void pathChangedIsQueuedToOtherThreads();
    void deleteFlag();
    void endsOnItsThread();
    void endsOnTheSpotWhereItsThreadHasEnded();
    void deepTree();
    void removalInAnyOrderIsLinear_data();
    void removalInAnyOrderIsLinear();
};

void HierarchyNodeTest::addsInOrder()
{
    const auto root = make();
    QSignalSpy added(root.get(), &HierarchyNodeInstance::notifyChildAdded);
    quint64 index = 99;
    QVERIFY(root->addChild(make(QStringLiteral("a")), &index));
    QCOMPARE(index, quint64(0));
    QVERIFY(root->addChild(make(QStringLiteral("b")), &index));
    QCOMPARE(index, quint64(1));
    grow(root, QStringLiteral("a.a1"));
    QCOMPARE(added.count(), 2);
    QCOMPARE(added.at(1).at(0).toString(), QStringLiteral("b"));

    const QStringList all{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("a1")};
    QCOMPARE(idsOf(root->getChildren(true)), all);
    QCOMPARE(idsOf(std::shared_ptr<const HierarchyNode>(root)->getChildren(true)), all);
    QCOMPARE(root->getNumberOfChildren(), quint64(2));
    QCOMPARE(root->getChildByIndex(1)->getId(), QStringLiteral("b"));
    QVERIFY(!root->getChildByIndex(2));
    QVERIFY(root->hasChild(make(QStringLiteral("b")), &index)); // by id, not by object
    QCOMPARE(index, quint64(1));
    QVERIFY(!root->hasChild(nullptr, &index));
    QCOMPARE(root->getChildren(true).last()->getRootNode(), NodePointer(root));
}

void HierarchyNodeTest::refusesTakenIds()
{
    const TestSupport::LogCapture log;
    const auto root = make();
    const NodePointer parent = grow(root, QStringLiteral("p"));
    const NodePointer first = grow(parent, QStringLiteral("a"));
    grow(parent, QStringLiteral("b"));
    const NodePointer other = grow(root, QStringLiteral("a"));
    quint64 index = 7;
    QVERIFY(!parent->addChild(other, &index));
    QVERIFY(!parent->addChild(first));
    QCOMPARE(parent->getChildById(QStringLiteral("a")), first);
    QCOMPARE(idsOf(parent->getChildren(false)), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(other->getParent(), NodePointer(root)); // where it was
    const auto line = QStringLiteral(
        "WARNING HierarchyNodeInstance::addChild() Trying to add existing child: 'a' to 'p'");
    QCOMPARE(log.lines(), (QStringList{line, line}));
}

void HierarchyNodeTest::refusesEmptyIdAndForeignNodes()
{
    const TestSupport::LogCapture log;
    const auto root = make();
    QVERIFY(!root->addChild(make()));
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(!root->addChild(nullptr));
    QCOMPARE(log.lines(),
             QStringList{QStringLiteral("CRITICAL HierarchyNodeInstance::addChild() called with incompatible "
                                        "hierarchy node implementation")});
    QCOMPARE(root->getNumberOfChildren(), quint64(0));
}

void HierarchyNodeTest::addsFromInsideNotifications()
{
    const TestSupport::LogCapture log;
    const auto root = make();
    bool again = true;
    connect(root.get(), &HierarchyNodeInstance::notifyChildAdded, [&](const QString &id) {
        again = root->addChild(root->getChildById(id));
        if (id == QLatin1String("a"))
            QVERIFY(root->addChild(make(QStringLiteral("b"))));
        QVERIFY(!root->isLocked());
    });
    QVERIFY(root->addChild(make(QStringLiteral("a"))));
    QVERIFY(!again);
    QCOMPARE(log.lines().size(), 2);
    QCOMPARE(idsOf(root->getChildren(false)), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

void HierarchyNodeTest::movesBetweenParents()
{
    const auto root = make();
    const NodePointer p = grow(root, QStringLiteral("p"));
    const NodePointer q = grow(root, QStringLiteral("q"));
    const NodePointer x = grow(p, QStringLiteral("x"));
    QVERIFY(q->addChild(x));
    QVERIFY(!p->hasChild(QStringLiteral("x")));
    QCOMPARE(x->getParent(), q);
    QVERIFY(x->setParent(p, false));
    QVERIFY(!q->hasChild(QStringLiteral("x")));
    QCOMPARE(p->getChildById(QStringLiteral("x")), x);
    QVERIFY(x->setParent(p, false)); // where it is already
    QVERIFY(x->setParent({}, false));
    QVERIFY(!x->getParent());
    QCOMPARE(p->getNumberOfChildren(), quint64(0));
    QCOMPARE(pathOf(x), QStringLiteral("x"));
}

void HierarchyNodeTest::refusedMoveLeavesNoParent()
{
    const auto root = make();
    const NodePointer p = grow(root, QStringLiteral("p"));
    const NodePointer taken = grow(root, QStringLiteral("q.x"));
    const auto closed = make<Closed>(QStringLiteral("closed"));
    root->addChild(closed);
    const NodePointer places[] = {taken->getParent(), closed};
    for (const NodePointer &place : places) {
        const NodePointer x = grow(p, QStringLiteral("x"));
        QCOMPARE(pathOf(x), QStringLiteral("p.x"));
        QVERIFY(!x->setParent(place, false));
        QVERIFY(!x->getParent());
        QVERIFY(!p->hasChild(QStringLiteral("x")));
        QCOMPARE(pathOf(x), QStringLiteral("x"));
    }
    QCOMPARE(taken->getParent()->getChildById(QStringLiteral("x")), taken);
}

void HierarchyNodeTest::refusesItselfAndDescendants()
{
    const auto root = make();
    const NodePointer leaf = grow(root, QStringLiteral("a.b.c"));
    const NodePointer a = root->getChildById(QStringLiteral("a"));
    QVERIFY(!leaf->addChild(a));
    QVERIFY(!a->setParent(leaf, false));
    QVERIFY(!a->setParent(a, false));
    QCOMPARE(a->getParent(), NodePointer(root));
    QCOMPARE(pathOf(leaf), QStringLiteral("a.b.c"));
    QCOMPARE(leaf->getNumberOfChildren(), quint64(0));
}

void HierarchyNodeTest::pathsFollowMoves()
{
    const auto root = make();
    const NodePointer leaf = grow(root, QStringLiteral("p.x.y"));
    const NodePointer x = leaf->getParent();
    const NodePointer q = grow(root, QStringLiteral("q"));
    const auto path = leaf->getNodePath();
    QCOMPARE(path->getFullPath(), QStringLiteral("p.x.y"));
    const quint64 before = path->getPathVersion();
    QVERIFY(x->setParent(q, true));
    QCOMPARE(path->getFullPath(), QStringLiteral("q.x.y"));
    QVERIFY(path->getPathVersion() > before);
    QCOMPARE(leaf->getNodePath(), path);
}

void HierarchyNodeTest::pathMadeAfterTheMove()
{
    const auto root = make();
    const NodePointer leaf = grow(root, QStringLiteral("p.x.y"));
    const NodePointer fresh = grow(root, QStringLiteral("q"));
    QCOMPARE(pathOf(leaf), QStringLiteral("p.x.y")); // made here, the one of q is not
    QVERIFY(fresh->addChild(leaf->getParent()));
    QCOMPARE(pathOf(leaf), QStringLiteral("q.x.y"));
    QCOMPARE(pathOf(fresh), QStringLiteral("q"));
}

void HierarchyNodeTest::pathChangedOncePerNode()
{
    const auto root = make();
    const NodePointer q = grow(root, QStringLiteral("q"));
    const NodePointer x = grow(root, QStringLiteral("p.x"));
    const NodePointer nodes[] = {x, grow(x, QStringLiteral("a")), grow(x, QStringLiteral("b.c"))};
    QList<int> counts{0, 0, 0};
    for (int i = 0; i < 3; ++i)
        connect(nodes[i].get(), &HierarchyNode::pathChanged, [&counts, i] { ++counts[i]; });
    q->addChild(x);
    QCOMPARE(counts, (QList<int>{1, 1, 1}));
    nodes[1]->setDeleteFlag();
    x->setParent(root, false);
    QCOMPARE(counts, (QList<int>{2, 1, 2}));
    x->setParent(q, true);
    QCOMPARE(counts, (QList<int>{2, 1, 2}));
}

// A slot may rely on what it moves: all below has heard when its own move returns.
void HierarchyNodeTest::pathChangedOfAMoveInsideAPathChange()
{
    const auto root = make();
    const NodePointer q = grow(root, QStringLiteral("q"));
    const NodePointer x = grow(root, QStringLiteral("p.x"));
    const NodePointer other = grow(root, QStringLiteral("p.other"));
    const NodePointer below = grow(other, QStringLiteral("y.z"));
    QSignalSpy changed(below.get(), &HierarchyNode::pathChanged);
    int heard = 0;
    connect(grow(x, QStringLiteral("a")).get(), &HierarchyNode::pathChanged, [&] {
        q->addChild(other);
        heard = changed.count();
    });
    q->addChild(x);
    QCOMPARE(heard, 1);
    QCOMPARE(changed.count(), 1);
}

void HierarchyNodeTest::pathChangedIsQueuedToOtherThreads()
{
    QThread home;
    home.start();
    const auto quit = qScopeGuard([&home] {
        home.quit();
        home.wait();
    });
    QSemaphore heard;
    std::atomic<QThread *> heardOn{nullptr};
    const auto root = make();
    const NodePointer x = grow(root, QStringLiteral("x"));
    const NodePointer below = grow(x, QStringLiteral("y"));
    connect(
        below.get(), &HierarchyNode::pathChanged, below.get(),
        [&] {
            heardOn = QThread::currentThread();
            heard.release();
        },
        Qt::DirectConnection);
    below->moveToThread(&home);
    grow(root, QStringLiteral("p"))->addChild(x);
    QVERIFY(heard.tryAcquire(1, 10000));
    QCOMPARE(heardOn.load(), &home);
}

void HierarchyNodeTest::deleteFlag()
{
    const auto root = make();
    const NodePointer x = grow(root, QStringLiteral("x"));
    QSignalSpy changed(x.get(), &HierarchyNode::pathChanged);
    QVERIFY(!x->isDeleteFlagSet());
    QVERIFY(x->setDeleteFlag());
    QVERIFY(x->isDeleteFlagSet());
    QVERIFY(!x->getParent());
    QCOMPARE(root->getNumberOfChildren(), quint64(0));
    QVERIFY(x->setDeleteFlag());
    QMetaObject::invokeMethod(x.get(), "onParentPathChanged");
    QCOMPARE(changed.count(), 0);
    // The tree holds the last pointer.
    HierarchyNode *const raw = grow(root, QStringLiteral("y")).get();
    QVERIFY(raw->setDeleteFlag());
}

void HierarchyNodeTest::endsOnItsThread()
{
    QThread home;
    home.start();
    const auto quit = qScopeGuard([&home] {
        home.quit();
        home.wait();
    });
    QThread *diedOn = nullptr;
    QSemaphore died;
    auto node = make<Mortal>(QStringLiteral("a"), &diedOn, &died);
    node->moveToThread(&home);
    node.reset();
    QVERIFY(died.tryAcquire(1, 10000));
    QCOMPARE(diedOn, &home);

    make<Mortal>(QStringLiteral("b"), &diedOn, &died).reset();
    QVERIFY(died.tryAcquire());
    QCOMPARE(diedOn, QThread::currentThread());
    HierarchyNode::Release(nullptr);
}

void HierarchyNodeTest::endsOnTheSpotWhereItsThreadHasEnded()
{
    QThread *diedOn = nullptr;
    QSemaphore died;
    // Nobody ends the pending deletion of a thread that has ended.
    NodePointer node;
    std::thread([&] { node = make<Mortal>(QStringLiteral("a"), &diedOn, &died); }).join();
    node.reset();
    QVERIFY(died.tryAcquire());
    QCOMPARE(diedOn, QThread::currentThread());
}

void HierarchyNodeTest::deepTree()
{
    QThread *diedOn = nullptr;
    QSemaphore died;
    auto root = make();
    NodePointer top = grow(root, QStringLiteral("top"));
    NodePointer last = growDeep(top);
    last->addChild(make<Mortal>(QStringLiteral("end"), &diedOn, &died));
    QCOMPARE(last->getRootNode(), NodePointer(root));
    QCOMPARE(pathOf(last).size(), 3 + 2 * Deep);
    QCOMPARE(root->getChildren(true).size(), Deep + 2);
    QCOMPARE(ConstNode(root)->getChildren(true).size(), Deep + 2);
    QSignalSpy changed(last.get(), &HierarchyNode::pathChanged);
    grow(root, QStringLiteral("place"))->addChild(top);
    QCOMPARE(changed.count(), 1);
    QVERIFY(pathOf(last).startsWith(QStringLiteral("place.top.a.a")));
    // A path may outlive its node, and lets go of all that stand above it.
    auto path = last->getNodePath();
    last.reset();
    top.reset();
    root.reset();
    QVERIFY(died.tryAcquire());
    path.reset();
}

void HierarchyNodeTest::removalInAnyOrderIsLinear_data()
{
    QTest::addColumn<int>("order");
    QTest::newRow("from the front") << 0;
    QTest::newRow("from the back") << 1;
    QTest::newRow("at random") << 2;
}

// The same number of removals, from few children each time and from all at once: with a square in it the
// second would take 20 times as long.
void HierarchyNodeTest::removalInAnyOrderIsLinear()
{
    QFETCH(int, order);
    const auto time = [order](int count) {
        const auto root = make();
        for (int i = 0; i < count; ++i)
            root->addChild(make(QString::number(i)));
        QList<NodePointer> nodes = root->getChildren(false);
        if (order == 1)
            std::reverse(nodes.begin(), nodes.end());
        else if (order == 2)
            std::shuffle(nodes.begin(), nodes.end(), std::mt19937(1));
        const CpuTimer timer;
        for (const NodePointer &node : qAsConst(nodes))
            node->setDeleteFlag();
        return root->getNumberOfChildren() == 0 ? timer.elapsed() : 0.0;
    };
    double few = 0;
    for (int i = 0; i < 20; ++i)
        few += time(2000);
    const double many = time(40000);
    QVERIFY(few > 0 && many > 0);
    QVERIFY2(many < 8 * few, qPrintable(QStringLiteral("%1 s, %2 s").arg(few).arg(many)));
}

QTEST_GUILESS_MAIN(HierarchyNodeTest)
#include "HierarchyNodeTest.moc"
