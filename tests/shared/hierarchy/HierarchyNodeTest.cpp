#include "HierarchyTree.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <random>
#include <support/Literals.h>
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
    void addsInOrder()
    {
        const auto root = make();
        QSignalSpy added(root.get(), &HierarchyNodeInstance::notifyChildAdded);
        quint64 index = 99;
        QVERIFY(root->addChild(make("a"_s), &index));
        QCOMPARE(index, quint64(0));
        grow(root, "b"_s);
        grow(root, "a.a1"_s);
        QCOMPARE(added.count(), 2);
        QCOMPARE(idsOf(root->getChildren(true)), (QStringList{"a"_s, "b"_s, "a1"_s}));
        QCOMPARE(root->getChildByIndex(1)->getId(), "b"_s);
        QVERIFY(root->hasChild(make("b"_s), &index)); // by id, not by object
        QCOMPARE(index, quint64(1));
    }

    void refusesTakenIds()
    {
        const TestSupport::LogCapture log;
        const auto root = make();
        const NodePointer parent = grow(root, "p"_s);
        const NodePointer first = grow(parent, "a"_s);
        const NodePointer other = grow(root, "a"_s);
        QVERIFY(!parent->addChild(other) && !parent->addChild(first));
        QCOMPARE(parent->getChildById("a"_s), first);
        QCOMPARE(other->getParent(), NodePointer(root)); // where it was
        const auto line
            = "WARNING HierarchyNodeInstance::addChild() Trying to add existing child: 'a' to 'p'"_s;
        QVERIFY(!HierarchyNodeInstance::AddIfAbsent(*parent, make("a"_s))); // without a line
        QVERIFY(HierarchyNodeInstance::AddIfAbsent(*parent, make("c"_s)));
        QVERIFY(!root->addChild(make()) && !root->addChild(nullptr));
        QCOMPARE(log.lines(),
                 QStringList({line, line,
                              "CRITICAL HierarchyNodeInstance::addChild() called with incompatible "
                              "hierarchy node implementation"}));
    }

    void addsFromInsideNotifications()
    {
        const TestSupport::LogCapture log;
        const auto root = make();
        bool again = true;
        connect(root.get(), &HierarchyNodeInstance::notifyChildAdded, [&](const QString &id) {
            again = root->addChild(root->getChildById(id));
            if (id == QLatin1String("a"))
                QVERIFY(root->addChild(make("b"_s)));
            QVERIFY(!root->isLocked());
        });
        QVERIFY(root->addChild(make("a"_s)));
        QVERIFY(!again);
        QCOMPARE(log.lines().size(), 2);
        QCOMPARE(idsOf(root->getChildren(false)), (QStringList{"a"_s, "b"_s}));
    }

    void refusedMoveLeavesNoParent()
    {
        const auto root = make();
        const NodePointer p = grow(root, "p"_s);
        const NodePointer taken = grow(root, "q.x"_s);
        const auto closed = make<Closed>("closed"_s);
        root->addChild(closed);
        const NodePointer places[] = {taken->getParent(), closed};
        for (const NodePointer &place : places) {
            const NodePointer x = grow(p, "x"_s);
            QCOMPARE(pathOf(x), "p.x"_s);
            QVERIFY(!x->setParent(place, false));
            QVERIFY(!x->getParent());
            QVERIFY(!p->hasChild("x"_s));
            QCOMPARE(pathOf(x), "x"_s);
        }
        QCOMPARE(taken->getParent()->getChildById("x"_s), taken);
    }

    void pathChangedOncePerNode()
    {
        const auto root = make();
        const NodePointer q = grow(root, "q"_s);
        const NodePointer x = grow(root, "p.x"_s);
        const NodePointer nodes[] = {x, grow(x, "a"_s), grow(x, "b.c"_s)};
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
    void pathChangedOfAMoveInsideAPathChange()
    {
        const auto root = make();
        const NodePointer q = grow(root, "q"_s);
        const NodePointer x = grow(root, "p.x"_s);
        const NodePointer other = grow(root, "p.other"_s);
        const NodePointer below = grow(other, "y.z"_s);
        QSignalSpy changed(below.get(), &HierarchyNode::pathChanged);
        int heard = 0;
        connect(grow(x, "a"_s).get(), &HierarchyNode::pathChanged, [&] {
            q->addChild(other);
            heard = changed.count();
        });
        q->addChild(x);
        QCOMPARE(heard, 1);
        QCOMPARE(changed.count(), 1);
    }

    void pathChangedIsQueuedToOtherThreads()
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
        const NodePointer x = grow(root, "x"_s);
        const NodePointer below = grow(x, "y"_s);
        connect(
            below.get(), &HierarchyNode::pathChanged, below.get(),
            [&] {
                heardOn = QThread::currentThread();
                heard.release();
            },
            Qt::DirectConnection);
        below->moveToThread(&home);
        grow(root, "p"_s)->addChild(x);
        QVERIFY(heard.tryAcquire(1, 10000));
        QCOMPARE(heardOn.load(), &home);
    }

    void deleteFlag()
    {
        const auto root = make();
        const NodePointer x = grow(root, "x"_s);
        QSignalSpy changed(x.get(), &HierarchyNode::pathChanged);
        QVERIFY(x->setDeleteFlag());
        QVERIFY(x->isDeleteFlagSet());
        QVERIFY(!x->getParent());
        QCOMPARE(root->getNumberOfChildren(), quint64(0));
        QVERIFY(x->setDeleteFlag());
        QMetaObject::invokeMethod(x.get(), "onParentPathChanged");
        QCOMPARE(changed.count(), 0);
        // The tree holds the last pointer.
        HierarchyNode *const raw = grow(root, "y"_s).get();
        QVERIFY(raw->setDeleteFlag());
    }

    void endsOnTheSpotWhereItsThreadHasEnded()
    {
        QThread *diedOn = nullptr;
        QSemaphore died;
        // Nobody ends the pending deletion of a thread that has ended.
        NodePointer node;
        std::thread([&] { node = make<Mortal>("a"_s, &diedOn, &died); }).join();
        node.reset();
        QVERIFY(died.tryAcquire());
        QCOMPARE(diedOn, QThread::currentThread());
    }

    void deepTree()
    {
        QThread *diedOn = nullptr;
        QSemaphore died;
        auto root = make();
        NodePointer top = grow(root, "top"_s);
        NodePointer last = growDeep(top);
        last->addChild(make<Mortal>("end"_s, &diedOn, &died));
        QCOMPARE(last->getRootNode(), NodePointer(root));
        QCOMPARE(pathOf(last).size(), 3 + 2 * Deep);
        QCOMPARE(root->getChildren(true).size(), Deep + 2);
        QCOMPARE(ConstNode(root)->getChildren(true).size(), Deep + 2);
        QSignalSpy changed(last.get(), &HierarchyNode::pathChanged);
        grow(root, "place"_s)->addChild(top);
        QCOMPARE(changed.count(), 1);
        QVERIFY(pathOf(last).startsWith("place.top.a.a"_s));
        // A path may outlive its node, and lets go of all that stand above it.
        auto path = last->getNodePath();
        last.reset();
        top.reset();
        root.reset();
        QVERIFY(died.tryAcquire());
        path.reset();
    }

    // The same number of removals, from few children each time and from all at once: with a square in it the
    // second would take 20 times as long.
    void removalInAnyOrderIsLinear()
    {
        const auto time = [](int count, const char *order) {
            const auto root = make();
            for (int i = 0; i < count; ++i)
                root->addChild(make(QString::number(i)));
            QList<NodePointer> nodes = root->getChildren(false);
            if (order == "from the back"_s)
                std::reverse(nodes.begin(), nodes.end());
            else if (order == "at random"_s)
                std::shuffle(nodes.begin(), nodes.end(), std::mt19937(1));
            const CpuTimer timer;
            for (const NodePointer &node : qAsConst(nodes))
                node->setDeleteFlag();
            return root->getNumberOfChildren() == 0 ? timer.elapsed() : 0.0;
        };
        for (const char *order : {"from the front", "from the back", "at random"}) {
            double few = 0;
            for (int i = 0; i < 20; ++i)
                few += time(2000, order);
            const double many = time(40000, order);
            QVERIFY(few > 0 && many > 0);
            QVERIFY2(many < 8 * few, qPrintable("%1: %2 s, %3 s"_s.arg(order).arg(few).arg(many)));
        }
    }
};

QTEST_GUILESS_MAIN(HierarchyNodeTest)
#include "HierarchyNodeTest.moc"
