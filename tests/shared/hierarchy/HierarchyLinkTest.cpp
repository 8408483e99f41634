#include "HierarchyTree.h"

#include <shared/hierarchy/HierarchyNodeLink.h>
#include <shared/hierarchy/HierarchyNodeReference.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>

#include <QtTest>

#include <set>
#include <support/LogCapture.h>

using namespace HierarchyTree;
using namespace Shared::Hierarchy;

namespace {

std::shared_ptr<HierarchyNodeLink> makeLink(const NodePointer &target, bool readOnly,
                                            const QString &id = QStringLiteral("link"))
{
    return make<HierarchyNodeLink>(std::weak_ptr<HierarchyNode>(target), id, readOnly);
}

} // namespace

class HierarchyLinkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writableLink();
    void readOnlyLink();
    void linkOutlivesTarget();
    void linkAsParent();
    void sharedTarget();
    void linksInACycle();
    void reference();
    void referenceOutlivesTarget();
    void constReference();
    void queryThroughReference();
    void pathLink();
    void pathLinkInVariant();
};

void HierarchyLinkTest::writableLink()
{
    const NodePointer root = make();
    const NodePointer leaf = grow(root, QStringLiteral("target.a.b"));
    const NodePointer target = root->getChildById(QStringLiteral("target"));
    const auto link = makeLink(target, false);
    root->addChild(link);
    QVERIFY(link->isLinked());
    QCOMPARE(root->findChildByRelativePath(QStringLiteral("link")), NodePointer(link));
    QCOMPARE(root->findChildByRelativePath(QStringLiteral("link.a.b")), leaf);
    QCOMPARE(pathOf(link), QStringLiteral("link"));
    QCOMPARE(idsOf(ConstNode(link)->getChildren(false)), QStringList{QStringLiteral("a")});
    // What is not passed on shows the children of the link itself.
    QVERIFY(NodePointer(link)->getChildren(false).isEmpty());
    QCOMPARE(link->getNumberOfChildren(), quint64(0));

    quint64 index = 0;
    const NodePointer c = make(QStringLiteral("c"));
    QVERIFY(link->addChild(c, &index));
    QCOMPARE(index, quint64(1));
    QCOMPARE(c->getParent(), target);
    QCOMPARE(pathOf(c), QStringLiteral("target.c"));
}

void HierarchyLinkTest::readOnlyLink()
{
    const NodePointer root = make();
    const NodePointer leaf = grow(root, QStringLiteral("target.a"));
    const auto link = makeLink(root->getChildById(QStringLiteral("target")), true);
    root->addChild(link);
    QVERIFY(link->isReadOnly());
    QVERIFY(!link->addChild(make(QStringLiteral("c"))));
    QVERIFY(!root->findChildByRelativePath(QStringLiteral("link.a")));
    QCOMPARE(ConstNode(root)->findChildByRelativePath(QStringLiteral("link.a")), ConstNode(leaf));
    QCOMPARE(idsOf(ConstNode(link)->getChildren(true)), QStringList{QStringLiteral("a")});
}

void HierarchyLinkTest::linkOutlivesTarget()
{
    const auto link = makeLink(make(QStringLiteral("target")), false);
    QVERIFY(!link->isLinked());
    QVERIFY(ConstNode(link)->getChildren(true).isEmpty());
    QVERIFY(!link->addChild(make(QStringLiteral("a"))));
    QVERIFY(!link->findChildByRelativePath(QString()));
    QCOMPARE(link->getId(), QStringLiteral("link"));
}

void HierarchyLinkTest::linkAsParent()
{
    const NodePointer root = make();
    const NodePointer target = grow(root, QStringLiteral("target"));
    const NodePointer x = grow(root, QStringLiteral("x"));
    const auto link = makeLink(makeLink(target, false), false);
    // A link to a link that has gone refuses, and leaves the node without a parent.
    QVERIFY(!x->setParent(link, false));
    QVERIFY(!x->getParent());
    QVERIFY(!root->hasChild(QStringLiteral("x")));

    const auto near = makeLink(target, false);
    const auto far = makeLink(near, false);
    QVERIFY(x->setParent(far, false));
    QCOMPARE(x->getParent(), target);
    QCOMPARE(pathOf(x), QStringLiteral("target.x"));
    QVERIFY(x->setParent({}, false));
    QCOMPARE(target->getNumberOfChildren(), quint64(0));

    root->addChild(x);
    QVERIFY(!x->setParent(makeLink(target, true), false));
    QVERIFY(!x->getParent());
    // A way round over a link is none.
    const NodePointer below = grow(target, QStringLiteral("below"));
    QVERIFY(!target->setParent(makeLink(below, false), false));
    QCOMPARE(target->getParent(), root);
}

void HierarchyLinkTest::sharedTarget()
{
    const NodePointer root = make();
    grow(root, QStringLiteral("target.leaf"));
    const NodePointer target = root->getChildById(QStringLiteral("target"));
    root->addChild(makeLink(target, true, QStringLiteral("l1")));
    root->addChild(makeLink(target, true, QStringLiteral("l2")));
    QCOMPARE(idsOf(ConstNode(root)->getChildren(true)).join(QLatin1Char(' ')),
             QStringLiteral("target l1 l2 leaf leaf leaf"));
}

void HierarchyLinkTest::linksInACycle()
{
    const NodePointer root = make();
    // Each place has a link to each other one, itself included: the ways through them are without end.
    constexpr int Places = 12;
    for (int place = 0; place < Places; ++place)
        grow(root, QStringLiteral("place%1").arg(place));
    const QList<NodePointer> places = root->getChildren(false);
    for (int from = 0; from < Places; ++from) {
        for (int to = 0; to < Places; ++to)
            places[from]->addChild(makeLink(places[to], false, QStringLiteral("to%1").arg(to)));
    }
    const QList<ConstNode> all = ConstNode(root)->getChildren(true);
    QCOMPARE(std::set<ConstNode>(all.begin(), all.end()).size(), size_t(Places + Places * Places));
    QCOMPARE(root->queryChildren<HierarchyNode>(QStringLiteral("*")).size(), Places + Places * Places);

    // The way there and back again, as long as a path may be.
    const QString path = QStringLiteral("place0") + QStringLiteral(".to1.to0").repeated(Deep / 2);
    QCOMPARE(root->findChildByRelativePath(path), places[1]->getChildById(QStringLiteral("to0")));
    QCOMPARE(ConstNode(root)->findChildByRelativePath(path + QLatin1Char('.')), ConstNode(places[0]));
}

void HierarchyLinkTest::reference()
{
    const NodePointer root = make();
    grow(root, QStringLiteral("target.a.b"));
    const auto target
        = std::dynamic_pointer_cast<HierarchyNodeInstance>(root->getChildById(QStringLiteral("target")));
    const auto shown = make<HierarchyNodeReference>(std::weak_ptr<HierarchyNodeInstance>(target));
    QVERIFY(!shown->isEmpty());
    QCOMPARE(shown->getId(), QStringLiteral("target"));
    QCOMPARE(shown->getNodePath(), target->getNodePath());
    QCOMPARE(NodePointer(shown)->getParent(), root);
    QCOMPARE(shown->getNumberOfChildren(), quint64(1));
    QVERIFY(NodePointer(shown)->hasChild(QStringLiteral("a")));
    QCOMPARE(idsOf(NodePointer(shown)->getChildren(true)),
             (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(shown->findChildByRelativePath(QString()), NodePointer(target));
    QVERIFY(shown->addChild(make(QStringLiteral("c"))));
    QVERIFY(target->hasChild(QStringLiteral("c")));
    const NodePointer x = make(QStringLiteral("x"));
    QVERIFY(x->setParent(shown, false));
    QCOMPARE(x->getParent(), NodePointer(target));
    const TestSupport::LogCapture log;
    QVERIFY(!root->addChild(shown));
    QCOMPARE(
        log.lines(),
        QStringList{QStringLiteral("WARNING HierarchyNodeInstance::addChild() Trying to add existing child: "
                                   "'target' to ''")});
    QVERIFY(!make()->addChild(shown)); // it has no place of its own

    QVERIFY(!shown->isReferenceDeleteFlagSet());
    QVERIFY(shown->setReferenceDeleteFlag());
    QVERIFY(target->isDeleteFlagSet());
    QVERIFY(shown->isReferenceDeleteFlagSet());
    QVERIFY(!shown->isDeleteFlagSet());
}

void HierarchyLinkTest::referenceOutlivesTarget()
{
    const auto shown
        = make<HierarchyNodeReference>(std::weak_ptr<HierarchyNodeInstance>(make(QStringLiteral("target"))));
    QVERIFY(shown->isEmpty());
    QCOMPARE(shown->getId(), QString());
    QVERIFY(!shown->getNodePath());
    QVERIFY(!NodePointer(shown)->getParent());
    QCOMPARE(shown->getNumberOfChildren(), quint64(0));
    QVERIFY(!shown->addChild(make(QStringLiteral("a"))));
    QVERIFY(!shown->findChildByRelativePath(QString()));
    QVERIFY(shown->isReferenceDeleteFlagSet());
    QVERIFY(!shown->setReferenceDeleteFlag());
}

void HierarchyLinkTest::constReference()
{
    const auto target = make(QStringLiteral("target"));
    grow(target, QStringLiteral("a"));
    const auto shown = make<HierarchyNodeReference>(std::weak_ptr<const HierarchyNodeInstance>(target));
    QCOMPARE(shown->getNumberOfChildren(), quint64(1));
    QVERIFY(ConstNode(shown)->findChildByRelativePath(QStringLiteral("a")));
    QVERIFY(!NodePointer(shown)->findChildByRelativePath(QStringLiteral("a")));
    QVERIFY(!shown->addChild(make(QStringLiteral("b"))));
    QVERIFY(!shown->setReferenceDeleteFlag());
}

void HierarchyLinkTest::queryThroughReference()
{
    const auto target = make(QStringLiteral("target"));
    grow(target, QStringLiteral("a.b"));
    const auto shown = make<HierarchyNodeReference>(std::weak_ptr<HierarchyNodeInstance>(target));
    for (const char *pattern : {"a.b", "*.b", "a.?"})
        QCOMPARE(idsOf(shown->queryChildren<HierarchyNode>(QString::fromLatin1(pattern))),
                 QStringList{QStringLiteral("b")});
}

void HierarchyLinkTest::pathLink()
{
    const auto path = [](const char *id) {
        return std::make_shared<const HierarchyStringPath>(nullptr, QStringLiteral("."),
                                                           QString::fromLatin1(id));
    };
    const auto a = path("a");
    const auto sameText = path("a");
    auto b = path("b");
    HierarchyStringPathLink link(a);
    QVERIFY(!link.add(sameText));
    QVERIFY(link.add(b));
    QVERIFY(link.contains(sameText));
    QCOMPARE(QString(link), QStringLiteral("a"));
    QVERIFY(link.remove(sameText));
    QVERIFY(!link.remove(sameText));
    b.reset();
    QCOMPARE(QString(link), QString());
    QVERIFY(!link.contains(HierarchyStringPathLink::Target()));
    QCOMPARE(link.cleanup(), 1);
    QVERIFY(link.isEmpty());
    QVERIFY(link.pop().expired());
    link.add(a);
    QCOMPARE(link.pop().lock(), a);
    QVERIFY(link.isEmpty());
}

void HierarchyLinkTest::pathLinkInVariant()
{
    const NodePointer root = make();
    const NodePointer leaf = grow(root, QStringLiteral("x.y"));
    const QVariant value = QVariant::fromValue(HierarchyStringPathLink(leaf->getNodePath()));
    QCOMPARE(value.typeName(), "Shared::Hierarchy::HierarchyStringPathLink");
    QVERIFY(value.canConvert<QString>());
    QCOMPARE(value.toString(), QStringLiteral("x.y"));
    leaf->setParent(root, false);
    QCOMPARE(value.toString(), QStringLiteral("y"));
}

QTEST_GUILESS_MAIN(HierarchyLinkTest)
#include "HierarchyLinkTest.moc"
