#include "HierarchyTree.h"

#include <shared/hierarchy/utils/HierarchyChildTable.h>

#include <QtTest>

#include <random>
#include <support/Literals.h>

using namespace HierarchyTree;
using Shared::Hierarchy::HierarchyStringPath;
using Shared::Hierarchy::utils::HierarchyChildTable;

namespace {

using PathPointer = std::shared_ptr<HierarchyStringPath>;

PathPointer makePath(const PathPointer &parent, const QString &id)
{
    return std::make_shared<HierarchyStringPath>(parent, "."_s, id);
}

} // namespace

/*! Paths, tables of children, and what is found by both. */
class HierarchyQueryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void validAndEmpty()
    {
        for (const char *valid : {"a.b_1", "größe.Ω"})
            QVERIFY2(HierarchyStringPath::IsValidPath(valid, "."), valid);
        for (const char *invalid : {"a b", "a\n", "", "a..b", ".a", "a."})
            QVERIFY2(!HierarchyStringPath::IsValidPath(invalid, "."), invalid);
        QVERIFY(!HierarchyStringPath::IsEmptyPath({}, ".")); // an empty text is one empty element
    }

    void elements()
    {
        const PathPointer path = makePath(makePath(makePath({}, "a"_s), "b"_s), "c"_s);
        QCOMPARE(HierarchyStringPath::RemoveBack(*path, 1), "a.b"_s);
        QCOMPARE(HierarchyStringPath::RemoveFront(*path, 1), "b.c"_s);
        QVERIFY(path->at(3).isEmpty() && path->at(-1).isEmpty());
        QString last;
        QString parent;
        path->getPathElementsFromPath(last, parent);
        QCOMPARE(last, "c"_s);
        QCOMPARE(parent, "a.b"_s);
        QCOMPARE(path->getPathElementsFromPath("x..y"), QStringList({"x"_s, QString(), "y"_s}));
        QCOMPARE(makePath(makePath({}, QString()), "a")->getFullPath(), "a"_s);
    }

    void pathsFollowMoves()
    {
        const PathPointer a = makePath({}, "a"_s);
        const PathPointer b = makePath({}, "b"_s);
        QCOMPARE(a->getPathVersion(), b->getPathVersion());
        const PathPointer x = makePath(a, "x"_s);
        const PathPointer below = makePath(x, "y"_s);
        QCOMPARE(below->getFullPath(), "a.x.y"_s);
        x->setPathParent(b);
        QCOMPARE(below->getFullPath(), "b.x.y"_s);
        QCOMPARE(x->getFullPath(), "b.x"_s);
        x->setPathParent({});
        QCOMPARE(below->getFullPath(), "x.y"_s);
    }

    void query()
    {
        const NodePointer root = make();
        for (const char *path : {"a.b.d", "a.c", "aa.b.d", "aa.e", "z[1]"})
            grow(root, QString::fromLatin1(path));
        const QPair<const char *, const char *> queries[] = {
            {"a.b", "a.b"},
            {"a", "a"}, // one node has no subtree
            {"a.x", ""},
            {"A", ""},
            {"", ""},
            {"*", "a;a.b;a.c;a.b.d;aa;aa.b;aa.e;aa.b.d;z[1]"},
            {"a.*", "a.b;a.b.d;a.c"},
            {"*.b.d", "a.b.d;aa.b.d"},
            {"a.*.d", "a.b.d"},
            {"a*", "a;a.b;a.c;a.b.d;aa;aa.b;aa.e;aa.b.d"},
            {"*a", "a;aa"}, // a star in front has no subtree
            {"?a", "aa;aa.b;aa.e;aa.b.d"},
            {"[ab]", "a"},
            {"a.[a-c].d", "a.b.d"},
            {"z[1]", ""},
            {"a.", "a"},
            {"a*.", "a;aa"},
            {"a..b", "a"}, // an empty element ends the search
            {".a", ""},
        };
        for (const auto &[pattern, expected] : queries)
            QCOMPARE(pathsOf(root->queryChildren<HierarchyNode>(pattern)).join(QLatin1Char(';')), expected);
    }

    void findsByPath()
    {
        const NodePointer root = make();
        const NodePointer leaf = grow(root, "a.b.c"_s);
        QCOMPARE(root->findChildByRelativePath("a.b.c"_s), leaf);
        QCOMPARE(root->findChildByRelativePath("a.b.c."_s), leaf);
        QCOMPARE(root->findChildByRelativePath(QString()), root);
        for (const char *missing : {"a.b.x", "a.x.c", "a..b", ".a", "A", "a.b.c.d"})
            QVERIFY2(!root->findChildByRelativePath(QString::fromLatin1(missing)), missing);
    }

    void deepPaths()
    {
        const NodePointer root = make();
        const NodePointer leaf = growDeep(root);
        QCOMPARE(root->findChildByRelativePath(deepPath()), leaf);
        QCOMPARE(std::as_const(*root).findChildByRelativePath(deepPath()), ConstNode(leaf));
        QCOMPARE(root->queryChildren<HierarchyNode>(deepPath()), QList<NodePointer>{leaf});
        QCOMPARE(root->queryChildren<HierarchyNode>("*"_s).size(), Deep);
    }

    // As many results from few children each time and from all at once: with a square in it the second would
    // take 20 times as long.
    void costIsLinear()
    {
        const auto time = [](int count, int rounds) {
            const NodePointer root = make();
            const NodePointer parent = grow(root, "a"_s);
            for (int i = 0; i < count; ++i)
                parent->addChild(make(QString::number(i)));
            const CpuTimer timer;
            int found = 0;
            for (int round = 0; round < rounds; ++round)
                found += root->queryChildren<HierarchyNode>("a.*"_s).size();
            return found == count * rounds ? timer.elapsed() : 0.0;
        };
        const double few = time(2000, 20);
        const double many = time(40000, 1);
        QVERIFY(few > 0 && many > 0);
        QVERIFY2(many < 8 * few, qPrintable("%1 s, %2 s"_s.arg(few).arg(many)));
    }

    // Random additions and removals, compared to the simplest thing that does the same.
    void agreesWithAList()
    {
        for (const int differentIds : {6, 14, 500}) // searched one by one, around the first index, indexed
            compareToAList(differentIds);
    }

private:
    static void compareToAList(int differentIds)
    {
        std::mt19937 random(1);
        HierarchyChildTable table;
        QStringList model;
        for (int step = 0; step < 4000; ++step) {
            const QString id = "node%1"_s.arg(random() % uint(differentIds));
            const int place = model.indexOf(id);
            const auto found = table.find(id);
            QCOMPARE(found != nullptr, place >= 0);
            QCOMPARE(table.position(id), place < 0 ? ~quint64(0) : quint64(place));
            if (place < 0) {
                table.append(id, make(id));
                model.append(id);
            } else if (random() % 3 != 0) {
                QCOMPARE((*found)->getId(), id);
                QCOMPARE(table.take(id)->getId(), id);
                model.removeAt(place);
            }
            QCOMPARE(table.size(), quint64(model.size()));
            if (!model.isEmpty()) {
                const int index = int(random() % uint(model.size()));
                QCOMPARE((*table.at(quint64(index)))->getId(), model.at(index));
            }
            QVERIFY(!table.at(quint64(model.size())));
        }
        QStringList order;
        table.forEach([&order](const NodePointer &node) { order.append(node->getId()); });
        QCOMPARE(order, model);
        QCOMPARE(idsOf(table.takeAll()), model);
        QCOMPARE(table.size(), quint64(0));
        QVERIFY(!table.find("node1"_s));
    }
};

QTEST_GUILESS_MAIN(HierarchyQueryTest)
#include "HierarchyQueryTest.moc"
