#include "HierarchyTree.h"

#include <shared/hierarchy/HierarchyNodeLink.h>
#include <shared/hierarchy/HierarchyNodeReference.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>

#include <QtTest>

#include <atomic>
#include <random>
#include <set>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <support/Threads.h>
#include <vector>

using namespace HierarchyTree;
using namespace Shared::Hierarchy;
using TestSupport::InThreads;

namespace {

std::shared_ptr<HierarchyNodeLink> makeLink(const NodePointer &target, bool readOnly,
                                            const QString &id = "link"_s)
{
    return make<HierarchyNodeLink>(std::weak_ptr<HierarchyNode>(target), id, readOnly);
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

/*! Links, references, and moves by several threads at once. */
class HierarchyLinkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writableLink()
    {
        const NodePointer root = make();
        const NodePointer leaf = grow(root, "target.a.b"_s);
        const NodePointer target = root->getChildById("target"_s);
        const auto link = makeLink(target, false);
        root->addChild(link);
        QCOMPARE(root->findChildByRelativePath("link"_s), NodePointer(link));
        QCOMPARE(root->findChildByRelativePath("link.a.b"_s), leaf);
        QCOMPARE(pathOf(link), "link"_s);
        QCOMPARE(idsOf(ConstNode(link)->getChildren(false)), QStringList{"a"_s});
        // What is not passed on shows the children of the link itself.
        QVERIFY(NodePointer(link)->getChildren(false).isEmpty());
        QCOMPARE(link->getNumberOfChildren(), quint64(0));

        quint64 index = 0;
        const NodePointer c = make("c"_s);
        QVERIFY(link->addChild(c, &index));
        QCOMPARE(index, quint64(1));
        QCOMPARE(c->getParent(), target);
        QCOMPARE(pathOf(c), "target.c"_s);
    }

    void readOnlyLink()
    {
        const NodePointer root = make();
        const NodePointer leaf = grow(root, "target.a"_s);
        const auto link = makeLink(root->getChildById("target"_s), true);
        root->addChild(link);
        QVERIFY(link->isReadOnly());
        QVERIFY(!link->addChild(make("c"_s)));
        QVERIFY(!root->findChildByRelativePath("link.a"_s));
        QCOMPARE(ConstNode(root)->findChildByRelativePath("link.a"_s), ConstNode(leaf));
        QCOMPARE(idsOf(ConstNode(link)->getChildren(true)), QStringList{"a"_s});
    }

    void linkAsParent()
    {
        const NodePointer root = make();
        const NodePointer target = grow(root, "target"_s);
        const NodePointer x = grow(root, "x"_s);
        const auto link = makeLink(makeLink(target, false), false);
        // A link to a link that has gone refuses, and leaves the node without a parent.
        QVERIFY(!x->setParent(link, false));
        QVERIFY(!x->getParent());
        QVERIFY(!root->hasChild("x"_s));

        const auto near = makeLink(target, false);
        const auto far = makeLink(near, false);
        QVERIFY(x->setParent(far, false));
        QCOMPARE(x->getParent(), target);
        QCOMPARE(pathOf(x), "target.x"_s);
        QVERIFY(x->setParent({}, false));
        QCOMPARE(target->getNumberOfChildren(), quint64(0));

        root->addChild(x);
        QVERIFY(!x->setParent(makeLink(target, true), false));
        QVERIFY(!x->getParent());
        // A way round over a link is none.
        const NodePointer below = grow(target, "below"_s);
        QVERIFY(!target->setParent(makeLink(below, false), false));
        QCOMPARE(target->getParent(), root);
    }

    void linksInACycle()
    {
        const NodePointer root = make();
        // Each place has a link to each other one, itself included: the ways through them are without end.
        constexpr int Places = 12;
        for (int place = 0; place < Places; ++place)
            grow(root, "place%1"_s.arg(place));
        const QList<NodePointer> places = root->getChildren(false);
        for (int from = 0; from < Places; ++from) {
            for (int to = 0; to < Places; ++to)
                places[from]->addChild(makeLink(places[to], false, "to%1"_s.arg(to)));
        }
        const QList<ConstNode> all = ConstNode(root)->getChildren(true);
        QCOMPARE(std::set<ConstNode>(all.begin(), all.end()).size(), size_t(Places + Places * Places));
        QCOMPARE(root->queryChildren<HierarchyNode>("*"_s).size(), Places + Places * Places);

        // The way there and back again, as long as a path may be.
        const QString path = "place0"_s + ".to1.to0"_s.repeated(Deep / 2);
        QCOMPARE(root->findChildByRelativePath(path), places[1]->getChildById("to0"_s));
        QCOMPARE(ConstNode(root)->findChildByRelativePath(path + QLatin1Char('.')), ConstNode(places[0]));
    }

    void longChainOfLinks()
    {
        const NodePointer root = make();
        const NodePointer leaf = grow(root, "target.a"_s);
        std::vector<NodePointer> chain{root->getChildById("target"_s)};
        for (int number = 0; number < Deep; ++number)
            chain.push_back(makeLink(chain.back(), false));
        const NodePointer far = chain.back();
        QCOMPARE(far->findChildByRelativePath("a"_s), leaf);
        QCOMPARE(ConstNode(far)->findChildByRelativePath("a"_s), ConstNode(leaf));
        QCOMPARE(idsOf(ConstNode(far)->getChildren(true)), QStringList{"a"_s});
        QVERIFY(far->addChild(make("b"_s)));
        QCOMPARE(chain.front()->getNumberOfChildren(), quint64(2));
        chain.erase(chain.begin() + Deep / 2);
        QVERIFY(!far->findChildByRelativePath("a"_s));
    }

    void reference()
    {
        const NodePointer root = make();
        grow(root, "target.a.b"_s);
        const auto target = std::dynamic_pointer_cast<HierarchyNodeInstance>(root->getChildById("target"_s));
        const auto shown = make<HierarchyNodeReference>(std::weak_ptr<HierarchyNodeInstance>(target));
        QCOMPARE(NodePointer(shown)->getParent(), root);
        QCOMPARE(shown->getNumberOfChildren(), quint64(1));
        QCOMPARE(idsOf(NodePointer(shown)->getChildren(true)), (QStringList{"a"_s, "b"_s}));
        QVERIFY(shown->addChild(make("c"_s)));
        QVERIFY(target->hasChild("c"_s));
        const NodePointer x = make("x"_s);
        QVERIFY(x->setParent(shown, false));
        QCOMPARE(x->getParent(), NodePointer(target));
        for (const char *pattern : {"a.b", "*.b", "a.?"})
            QCOMPARE(idsOf(shown->queryChildren<HierarchyNode>(pattern)), QStringList("b"));
        const TestSupport::LogCapture log;
        QVERIFY(!root->addChild(shown));
        QCOMPARE(log.lines(),
                 QStringList{"WARNING HierarchyNodeInstance::addChild() Trying to add existing child: "
                             "'target' to ''"_s});
        QVERIFY(!make()->addChild(shown)); // it has no place of its own

        QVERIFY(shown->setReferenceDeleteFlag());
        QVERIFY(target->isDeleteFlagSet());
        QVERIFY(shown->isReferenceDeleteFlagSet());
        QVERIFY(!shown->isDeleteFlagSet());
    }

    void referenceOutlivesTarget()
    {
        const auto shown
            = make<HierarchyNodeReference>(std::weak_ptr<HierarchyNodeInstance>(make("target"_s)));
        QVERIFY(shown->isEmpty());
        QCOMPARE(shown->getId(), QString());
        QVERIFY(!shown->getNodePath());
        QVERIFY(!shown->addChild(make("a"_s)));
        QVERIFY(!shown->findChildByRelativePath(QString()));
        QVERIFY(shown->isReferenceDeleteFlagSet());
        QVERIFY(!shown->setReferenceDeleteFlag());
    }

    void pathLink()
    {
        const auto path = [](const char *id) {
            return std::make_shared<const HierarchyStringPath>(nullptr, "."_s, QString::fromLatin1(id));
        };
        const auto a = path("a");
        const auto sameText = path("a");
        auto b = path("b");
        HierarchyStringPathLink link(a);
        QVERIFY(!link.add(sameText) && link.contains(sameText));
        QVERIFY(link.add(b));
        QVERIFY(link.remove(sameText) && !link.remove(sameText));
        b.reset();
        QCOMPARE(link.cleanup(), 1);
        QVERIFY(link.isEmpty());

        const NodePointer root = make();
        const NodePointer leaf = grow(root, "x.y");
        const QVariant value = QVariant::fromValue(HierarchyStringPathLink(leaf->getNodePath()));
        leaf->setParent(root, false);
        QCOMPARE(value.toString(), "y"_s);
    }

    void twoThatMoveBelowEachOther()
    {
        for (int round = 0; round < 300; ++round) {
            const Tree tree(2);
            std::atomic<int> moved{0};
            InThreads(2, [&](int i) {
                if (tree.nodes[size_t(i)]->setParent(tree.nodes[size_t(1 - i)], false))
                    ++moved;
            });
            QCOMPARE(moved.load(), 1);
            QVERIFY(tree.isWhole());
        }
    }

    // Who was moved on before its entry, and who comes in from below, lock the same two nodes.
    void twoThatMoveOnAtOnce()
    {
        const Tree tree(2);
        InThreads(4, [&tree](int i) {
            const NodePointer &node = tree.nodes[size_t(i % 2)];
            const NodePointer &target = i < 2 ? tree.nodes[size_t(1 - i)] : tree.root;
            for (int round = 0; round < 1000000; ++round)
                node->setParent(target, false);
        });
        for (const NodePointer &node : tree.nodes)
            node->setParent(tree.root, false);
        QVERIFY(tree.isWhole());
    }

    void manyAddOneId()
    {
        for (int round = 0; round < 200; ++round) {
            const Tree tree(0);
            std::atomic<int> added{0};
            InThreads(4, [&](int) { added += tree.root->addChild(make("a"_s)) ? 1 : 0; });
            QCOMPARE(added.load(), 1);
            QCOMPARE(tree.root->getNumberOfChildren(), quint64(1));
            QVERIFY(isSound(tree.root));
        }
    }

    void randomMoves()
    {
        const Tree tree(12);
        InThreads(4, [&tree](int i) {
            std::mt19937 random{uint(i)};
            const auto any = [&] { return tree.nodes[random() % tree.nodes.size()]; };
            for (int round = 0; round < 4000; ++round) {
                switch (random() % 6) {
                case 0:
                    any()->setParent(tree.root, false);
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
                    tree.root->getChildren(true);
                    tree.root->queryChildren<HierarchyNode>("*.n1*"_s);
                    break;
                default:
                    any()->setParent(any(), false);
                    pathOf(any());
                }
            }
        });
        for (const NodePointer &node : tree.nodes) // bring back what hangs below nothing
            node->setParent(tree.root, false);
        QVERIFY(tree.isWhole());
        QCOMPARE(tree.root->getNumberOfChildren(), quint64(tree.nodes.size()));
    }
};

QTEST_GUILESS_MAIN(HierarchyLinkTest)
#include "HierarchyLinkTest.moc"
