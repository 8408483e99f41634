#include <shared/hierarchy/HierarchyStringPath.h>

#include <QtTest>

#include <support/Literals.h>

using Shared::Hierarchy::HierarchyStringPath;

namespace {

using PathPointer = std::shared_ptr<HierarchyStringPath>;

PathPointer makePath(const PathPointer &parent, const QString &id)
{
    return std::make_shared<HierarchyStringPath>(parent, "."_s, id);
}

// A chain of paths, one below the other, from a dotted text.
PathPointer makeChain(const QString &text)
{
    PathPointer path;
    const QStringList ids = text.split(QLatin1Char('.'));
    for (const QString &id : ids)
        path = makePath(path, id);
    return path;
}

} // namespace

class HierarchyStringPathTest : public QObject
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
        const PathPointer path = makeChain("a.b.c"_s);
        QCOMPARE(path->getFullPath(), "a.b.c"_s);
        QCOMPARE(path->getPathId(), "c"_s);
        QCOMPARE(path->at(2), "c"_s);
        QCOMPARE(HierarchyStringPath::RemoveBack(*path, 1), "a.b"_s);
        QCOMPARE(HierarchyStringPath::RemoveFront(*path, 1), "b.c"_s);
        QVERIFY(path->at(3).isEmpty() && path->at(-1).isEmpty());
        QString last;
        QString parent;
        path->getPathElementsFromPath(last, parent);
        QCOMPARE(last, "c"_s);
        QCOMPARE(parent, "a.b"_s);
        makePath({}, "a"_s)->getPathElementsFromPath(last, parent);
        QCOMPARE(last, "a"_s);
        QCOMPARE(parent, QString());

        const QStringList other{"x"_s, QString(), "y"_s};
        QCOMPARE(path->getPathFromPathElements(other), "x..y"_s);
        QCOMPARE(path->getPathElementsFromPath("x..y"), other);
        const PathPointer root = makePath({}, QString());
        QCOMPARE(root->size(), 1);
        QCOMPARE(makePath(root, "a")->getFullPath(), "a"_s);
    }

    void followsMovesAbove()
    {
        const PathPointer x = makePath({}, "x"_s);
        const PathPointer y = makePath(x, "y"_s);
        const PathPointer a = makePath(y, "a"_s);
        QCOMPARE(a->getFullPath(), "x.y.a"_s);
        y->setPathParent(makePath({}, "z"_s));
        QCOMPARE(a->getFullPath(), "z.y.a"_s);
        y->setPathParent({});
        QCOMPARE(a->getFullPath(), "y.a"_s);
        a->setPathParent({});
        QCOMPARE(a->getFullPath(), "a"_s);
    }

    void moveBetweenParentsOfTheSameVersion()
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
    }
};

QTEST_GUILESS_MAIN(HierarchyStringPathTest)
#include "HierarchyStringPathTest.moc"
