#include <shared/hierarchy/HierarchyStringPath.h>

#include <QtTest>

using Shared::Hierarchy::HierarchyStringPath;

namespace {

using PathPointer = std::shared_ptr<HierarchyStringPath>;

PathPointer makePath(const PathPointer &parent, const QString &id)
{
    return std::make_shared<HierarchyStringPath>(parent, QStringLiteral("."), id);
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
    void validAndEmpty_data();
    void validAndEmpty();
    void elements();
    void removeElements();
    void rootWithoutId();
    void followsMovesAbove();
    void versionRisesWithEachMove();
    void moveBetweenParentsOfTheSameVersion();
    void copyStandsForItself();
    void deepChain();
};

void HierarchyStringPathTest::validAndEmpty_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("valid");
    QTest::newRow("words") << QStringLiteral("a.b_1") << true;
    QTest::newRow("letters of all scripts") << QString::fromUtf8("größe.Ω") << true;
    QTest::newRow("space") << QStringLiteral("a b") << false;
    QTest::newRow("line end") << QStringLiteral("a\n") << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("empty element inside") << QStringLiteral("a..b") << false;
    QTest::newRow("empty element in front") << QStringLiteral(".a") << false;
    QTest::newRow("empty element behind") << QStringLiteral("a.") << false;
}

void HierarchyStringPathTest::validAndEmpty()
{
    QFETCH(QString, path);
    const QString separator = QStringLiteral(".");
    QTEST(HierarchyStringPath::IsValidPath(path, separator), "valid");
    // An empty text is one empty element.
    QVERIFY(!HierarchyStringPath::IsEmptyPath(path, separator));
}

void HierarchyStringPathTest::elements()
{
    const PathPointer path = makeChain(QStringLiteral("a.b.c"));
    QCOMPARE(path->getFullPath(), QStringLiteral("a.b.c"));
    QCOMPARE(path->getPathId(), QStringLiteral("c"));
    QCOMPARE(path->size(), 3);
    QVERIFY(path->isValid());
    QCOMPARE(path->at(0), QStringLiteral("a"));
    QCOMPARE(path->at(2), QStringLiteral("c"));
    QCOMPARE(path->at(3), QString());
    QCOMPARE(path->at(-1), QString());

    QString last;
    QString parent;
    path->getPathElementsFromPath(last, parent);
    QCOMPARE(last, QStringLiteral("c"));
    QCOMPARE(parent, QStringLiteral("a.b"));
    makePath({}, QStringLiteral("a"))->getPathElementsFromPath(last, parent);
    QCOMPARE(last, QStringLiteral("a"));
    QCOMPARE(parent, QString());

    const QStringList other{QStringLiteral("x"), QString(), QStringLiteral("y")};
    QCOMPARE(path->getPathFromPathElements(other), QStringLiteral("x..y"));
    QCOMPARE(path->getPathElementsFromPath(QStringLiteral("x..y")), other);
}

void HierarchyStringPathTest::removeElements()
{
    const PathPointer path = makeChain(QStringLiteral("a.b.c"));
    QCOMPARE(HierarchyStringPath::RemoveBack(*path, 1), QStringLiteral("a.b"));
    QCOMPARE(HierarchyStringPath::RemoveFront(*path, 1), QStringLiteral("b.c"));
    QCOMPARE(HierarchyStringPath::RemoveBack(*path, 3), QString());
    QCOMPARE(HierarchyStringPath::RemoveFront(*path, 4), QString());
    QCOMPARE(HierarchyStringPath::RemoveBack(*path, 0), QStringLiteral("a.b.c"));
    QCOMPARE(HierarchyStringPath::RemoveFront(*path, -1), QStringLiteral("a.b.c"));
}

void HierarchyStringPathTest::rootWithoutId()
{
    const PathPointer root = makePath({}, QString());
    QCOMPARE(root->getFullPath(), QString());
    QCOMPARE(root->size(), 1);
    QCOMPARE(makePath(root, QStringLiteral("a"))->getFullPath(), QStringLiteral("a"));
}

void HierarchyStringPathTest::followsMovesAbove()
{
    const PathPointer x = makePath({}, QStringLiteral("x"));
    const PathPointer y = makePath(x, QStringLiteral("y"));
    const PathPointer a = makePath(y, QStringLiteral("a"));
    QCOMPARE(a->getFullPath(), QStringLiteral("x.y.a"));
    y->setPathParent(makePath({}, QStringLiteral("z")));
    QCOMPARE(a->getFullPath(), QStringLiteral("z.y.a"));
    y->setPathParent({});
    QCOMPARE(a->getFullPath(), QStringLiteral("y.a"));
    a->setPathParent({});
    QCOMPARE(a->getFullPath(), QStringLiteral("a"));
}

void HierarchyStringPathTest::versionRisesWithEachMove()
{
    const PathPointer often = makePath({}, QStringLiteral("often"));
    for (int i = 0; i < 10; ++i)
        often->setPathParent({});
    const PathPointer seldom = makePath({}, QStringLiteral("seldom"));
    const PathPointer a = makePath(often, QStringLiteral("a"));
    const PathPointer below = makePath(a, QStringLiteral("b"));
    const PathPointer places[] = {seldom, often, {}, seldom, seldom, {}};
    for (const PathPointer &place : places) {
        const quint64 before = below->getPathVersion();
        a->setPathParent(place);
        QVERIFY(below->getPathVersion() > before);
    }
}

void HierarchyStringPathTest::moveBetweenParentsOfTheSameVersion()
{
    const PathPointer a = makePath({}, QStringLiteral("a"));
    const PathPointer b = makePath({}, QStringLiteral("b"));
    QCOMPARE(a->getPathVersion(), b->getPathVersion());
    const PathPointer x = makePath(a, QStringLiteral("x"));
    const PathPointer below = makePath(x, QStringLiteral("y"));
    QCOMPARE(below->getFullPath(), QStringLiteral("a.x.y"));
    x->setPathParent(b);
    QCOMPARE(below->getFullPath(), QStringLiteral("b.x.y"));
    QCOMPARE(x->getFullPath(), QStringLiteral("b.x"));
}

void HierarchyStringPathTest::copyStandsForItself()
{
    const PathPointer parent = makePath({}, QStringLiteral("p"));
    const PathPointer original = makePath(parent, QStringLiteral("a"));
    const HierarchyStringPath copy(*original);
    QCOMPARE(copy.getPathVersion(), original->getPathVersion());
    original->setPathParent({});
    QCOMPARE(copy.getFullPath(), QStringLiteral("p.a"));
    QCOMPARE(original->getFullPath(), QStringLiteral("a"));
}

void HierarchyStringPathTest::deepChain()
{
    PathPointer path;
    for (int i = 0; i < 2000; ++i)
        path = makePath(path, QStringLiteral("a"));
    QCOMPARE(path->size(), 2000);
    QCOMPARE(path->getPathVersion(), quint64(2 * 2000));
}

QTEST_GUILESS_MAIN(HierarchyStringPathTest)
#include "HierarchyStringPathTest.moc"
