#include "HierarchyTree.h"

#include <QtTest>

#include <support/Literals.h>

using namespace HierarchyTree;

class HierarchyQueryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void query_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *pattern, const char *expected) {
            QTest::newRow(name) << QString::fromLatin1(pattern) << QString::fromLatin1(expected);
        };
        row("one node", "a.b", "a.b");
        row("one node has no subtree", "a", "a");
        row("no such node", "a.x", "");
        row("case counts", "A", "");
        row("empty", "", "");
        row("everything", "*", "a;a.b;a.c;a.b.d;aa;aa.b;aa.e;aa.b.d;z[1]");
        row("all below one", "a.*", "a.b;a.b.d;a.c");
        row("star in the middle", "*.b.d", "a.b.d;aa.b.d");
        row("star alone in the middle, named end", "a.*.d", "a.b.d");
        row("star at the end", "a*", "a;a.b;a.c;a.b.d;aa;aa.b;aa.e;aa.b.d");
        row("star in front has no subtree", "*a", "a;aa");
        row("question mark has a subtree", "?a", "aa;aa.b;aa.e;aa.b.d");
        row("set of characters has no subtree", "[ab]", "a");
        row("range in the middle", "a.[a-c].d", "a.b.d");
        row("bracket that is no set", "z[1]", "");
        row("separator at the end", "a.", "a");
        row("separator at the end after a star", "a*.", "a;aa");
        row("empty element ends the search", "a..b", "a");
        row("separator in front", ".a", "");
    }

    void query()
    {
        const NodePointer root = make();
        for (const char *path : {"a.b.d", "a.c", "aa.b.d", "aa.e", "z[1]"})
            grow(root, QString::fromLatin1(path));
        QFETCH(QString, pattern);
        QTEST(pathsOf(root->queryChildren<HierarchyNode>(pattern)).join(QLatin1Char(';')), "expected");
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
};

QTEST_GUILESS_MAIN(HierarchyQueryTest)
#include "HierarchyQueryTest.moc"
