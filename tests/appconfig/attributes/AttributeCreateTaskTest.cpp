#include <shared/hierarchy/HierarchyNodeLink.h>

#include <QSemaphore>
#include <QtTest>

#include <support/AttributeTree.h>
#include <support/LogCapture.h>

using namespace Tessellum::AppConfig::Attributes;
using namespace Tessellum::Notification;
using Reports = QList<CreateObserver::ResultType>;
using Shared::Hierarchy::HierarchyNodeInstance;
using Shared::Hierarchy::HierarchyNodeLink;
using Tessellum::Notification::utils::MakeNode;
using TestSupport::AttributeTree;

namespace {

const Reports created{{CreatePoint::Begin, true}, {CreatePoint::Done, true}};
const Reports notCreated{{CreatePoint::Begin, true}, {CreatePoint::Done, false}};
const Reports notBegun{{CreatePoint::Begin, false}};

Reports create(AttributeTree &tree, const QVariant &payload)
{
    AttributeCreateTask task(tree.notifications.getCreateRegistration(), tree.root, QString(), payload,
                             CreatePoint::Done);
    return TestSupport::RunAndRecord(task);
}

Reports createOne(AttributeTree &tree, const QString &name, const QVariant &value)
{
    return create(tree, QVariant::fromValue(AttributeTree::data(name, value)));
}

} // namespace

class AttributeCreateTaskTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void makesWhatIsMissingOnTheWay();
    void overwritesAnExistingAttribute();
    void ensureLeavesAnExistingAttributeAlone();
    void refusesImpossiblePlaces_data();
    void refusesImpossiblePlaces();
    void walksThroughLinks();
    void list();
    void badPayloads();
    void parentGone();
    void notifiesEachPathOfAList();
    void simultaneousCreationsShareTheWay();
    void creationAgainstDeletion();
};

void AttributeCreateTaskTest::makesWhatIsMissingOnTheWay()
{
    AttributeTree tree;
    QCOMPARE(createOne(tree, QStringLiteral("a.b.c"), 1), created);
    QCOMPARE(tree.value(QStringLiteral("a.b.c")), QVariant(1));
    QCOMPARE(tree.find(QStringLiteral("a.b.c"))->getPath(), QStringLiteral("a.b.c"));
    QVERIFY(!tree.find(QStringLiteral("a.b"))->hasValue());
}

void AttributeCreateTaskTest::overwritesAnExistingAttribute()
{
    AttributeTree tree;
    createOne(tree, QStringLiteral("a.b"), 1);
    const auto parent = tree.find(QStringLiteral("a"));
    QCOMPARE(create(tree, QVariant::fromValue(AttributeTree::data(QStringLiteral("a"), 2, 1))), created);
    QCOMPARE(tree.find(QStringLiteral("a")), parent);
    QCOMPARE(tree.value(QStringLiteral("a")), QVariant(2));
    QCOMPARE(parent->getAccess(), quint32(1));
    QCOMPARE(tree.value(QStringLiteral("a.b")), QVariant(1));
}

void AttributeCreateTaskTest::ensureLeavesAnExistingAttributeAlone()
{
    AttributeTree tree;
    const auto data = AttributeTree::data(QStringLiteral("a.b"), 2);
    const auto ensure = QVariant::fromValue(AttributeEnsureData(data.name, data.details));
    QCOMPARE(create(tree, ensure), created);
    QCOMPARE(tree.value(QStringLiteral("a.b")), QVariant(2));
    createOne(tree, QStringLiteral("a.b"), 1);
    QCOMPARE(create(tree, ensure), created);
    QCOMPARE(tree.value(QStringLiteral("a.b")), QVariant(1));
}

void AttributeCreateTaskTest::refusesImpossiblePlaces_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("empty element") << QStringLiteral("new..a");
    QTest::newRow("empty end") << QStringLiteral("new.a.");
    QTest::newRow("a node that is no attribute") << QStringLiteral("plain");
    QTest::newRow("beneath a read-only link") << QStringLiteral("readonly.new");
}

void AttributeCreateTaskTest::refusesImpossiblePlaces()
{
    QFETCH(QString, name);
    AttributeTree tree;
    const auto target = MakeNode<HierarchyNodeInstance>(QStringLiteral("target"));
    tree.root->addChild(MakeNode<HierarchyNodeInstance>(QStringLiteral("plain")));
    tree.root->addChild(MakeNode<HierarchyNodeLink>(target, QStringLiteral("readonly"), true));
    QCOMPARE(createOne(tree, name, 1), notCreated);
    QCOMPARE(tree.root->getNumberOfChildren(), quint64(2));
    QCOMPARE(target->getNumberOfChildren(), quint64(0));
}

void AttributeCreateTaskTest::walksThroughLinks()
{
    AttributeTree tree;
    const auto target = MakeNode<HierarchyNodeInstance>(QStringLiteral("target"));
    tree.root->addChild(MakeNode<HierarchyNodeLink>(target, QStringLiteral("link"), false));
    const TestSupport::LogCapture log;
    QCOMPARE(createOne(tree, QStringLiteral("link.a.b"), 1), created);
    QCOMPARE(createOne(tree, QStringLiteral("link.a.c"), 2), created);
    QCOMPARE(createOne(tree, QStringLiteral("link.a.b"), 3), created);
    QCOMPARE(target->getChildren(true).size(), 3);
    QCOMPARE(tree.value(QStringLiteral("link.a.b")), QVariant(3));
    QCOMPARE(log.lines(), QStringList());
}

void AttributeCreateTaskTest::list()
{
    AttributeTree tree;
    const AttributesCreateData list{AttributeTree::data(QStringLiteral("a"), 1),
                                    AttributeTree::data(QString(), 2),
                                    AttributeTree::data(QStringLiteral("b.c"), 3)};
    QCOMPARE(create(tree, QVariant::fromValue(list)), created);
    QCOMPARE(tree.value(QStringLiteral("a")), QVariant(1));
    QCOMPARE(tree.value(QStringLiteral("b.c")), QVariant(3));
    QCOMPARE(create(tree, QVariant::fromValue(AttributesCreateData{list.at(1)})), notCreated);
}

void AttributeCreateTaskTest::badPayloads()
{
    AttributeTree tree;
    const QString nothingToTell = QStringLiteral("WARNING AttributeCreateTask::handleCreateNotification() "
                                                 "supplied creation data is empty, no notifications send");
    {
        const TestSupport::LogCapture log;
        QCOMPARE(create(tree, 5), notBegun);
        QCOMPARE(
            log.lines(),
            (QStringList{QStringLiteral("WARNING AttributeCreateTask::runCreate() failed to convert the data "
                                        "into AttributeCreateData or AttributesCreateData, no "
                                        "attribute(s) created"),
                         nothingToTell}));
    }
    const TestSupport::LogCapture log;
    QCOMPARE(create(tree, QVariant::fromValue(AttributesCreateData())), notCreated);
    QCOMPARE(
        log.lines(),
        (QStringList{nothingToTell,
                     QStringLiteral("WARNING AttributesCreateTask::createAttributesInHierarchy() supplied "
                                    "creation data is empty, no data entries created"),
                     nothingToTell}));
}

void AttributeCreateTaskTest::parentGone()
{
    AttributeTree tree;
    const auto held = tree.add(QStringLiteral("held"), 1);
    held->markForDeletion();
    for (const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &parent :
         {std::weak_ptr<Shared::Hierarchy::HierarchyNode>(),
          std::weak_ptr<Shared::Hierarchy::HierarchyNode>(held)}) {
        AttributeCreateTask task(nullptr, parent, QString(),
                                 QVariant::fromValue(AttributeTree::data(QStringLiteral("a"), 1)),
                                 CreatePoint::Done);
        QCOMPARE(TestSupport::RunAndRecord(task), notBegun);
    }
    QCOMPARE(held->getNumberOfChildren(), quint64(0));
}

void AttributeCreateTaskTest::notifiesEachPathOfAList()
{
    AttributeTree tree;
    const auto parent = tree.add(QStringLiteral("p"), QVariant());
    QMutex mutex;
    QStringList heard;
    QSemaphore calls;
    const auto handle = tree.notifications.registerCreateHandler(
        QStringLiteral("*"),
        [&](const QString &path, const CreatePoint &point, const bool &result) {
            const QMutexLocker locker(&mutex);
            heard.append(QStringLiteral("%1 %2 %3").arg(path).arg(int(point)).arg(result));
            calls.release();
        },
        CreatePoint::All);
    const AttributesCreateData list{AttributeTree::data(QStringLiteral("a"), 1),
                                    AttributeTree::data(QStringLiteral("b.c"), 2)};
    create(tree, QVariant::fromValue(list));
    AttributeCreateTask below(tree.notifications.getCreateRegistration(), parent, QString(),
                              QVariant::fromValue(list.at(1)), CreatePoint::Done);
    below.run();
    QVERIFY(calls.tryAcquire(6, 20000));
    const QMutexLocker locker(&mutex);
    heard.sort();
    QCOMPARE(
        heard,
        (QStringList{QStringLiteral("a 1 1"), QStringLiteral("a 2 1"), QStringLiteral("b.c 1 1"),
                     QStringLiteral("b.c 2 1"), QStringLiteral("p.b.c 1 1"), QStringLiteral("p.b.c 2 1")}));
}

void AttributeCreateTaskTest::simultaneousCreationsShareTheWay()
{
    AttributeTree tree;
    for (int round = 0; round < 200; ++round) {
        const QString parent = QStringLiteral("r%1.").arg(round);
        QList<std::shared_ptr<CreateObserver>> observers;
        for (const char *leaf : {"x.b", "x.c", "x.d", "x.b"})
            observers.append(tree.pool.startCreateTask(
                tree.root, QString(),
                QVariant::fromValue(AttributeTree::data(parent + QLatin1String(leaf), round)),
                CreatePoint::Done));
        for (const auto &observer : qAsConst(observers)) {
            observer->wait();
            QCOMPARE(observer->getResult(), created.last());
        }
        for (const char *leaf : {"x.b", "x.c", "x.d"})
            QCOMPARE(tree.value(parent + QLatin1String(leaf)), QVariant(round));
    }
}

void AttributeCreateTaskTest::creationAgainstDeletion()
{
    // A creation that says true and is followed by no deletion must be found, whatever it met on its way.
    AttributeTree tree;
    for (int round = 0; round < 200; ++round) {
        createOne(tree, QStringLiteral("a.old"), round);
        const auto deletion = tree.pool.startDeleteTask(tree.find(QStringLiteral("a")), QStringLiteral("a"),
                                                        QVariant(), DeletePoint::Done);
        const auto creation = tree.pool.startCreateTask(
            tree.root, QString(), QVariant::fromValue(AttributeTree::data(QStringLiteral("a.new"), round)),
            CreatePoint::Done);
        deletion->wait();
        creation->wait();
        QCOMPARE(creation->getResult(), created.last());
        const auto parent = tree.find(QStringLiteral("a"));
        QVERIFY(!parent || !parent->hasChild(QStringLiteral("old")));
        QVERIFY(!parent || tree.find(QStringLiteral("a.new")));
    }
}

QTEST_GUILESS_MAIN(AttributeCreateTaskTest)

#include "AttributeCreateTaskTest.moc"
