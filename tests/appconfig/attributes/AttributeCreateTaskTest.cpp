#include <shared/hierarchy/HierarchyNodeLink.h>

#include <QtTest>

#include <support/AttributeTree.h>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <support/Notes.h>

using namespace TestSupport;
using Reports = QList<CreateObserver::ResultType>;
using Shared::Hierarchy::HierarchyNodeLink;

namespace {

const Reports created{{CreatePoint::Begin, true}, {CreatePoint::Done, true}};
const Reports notCreated{{CreatePoint::Begin, true}, {CreatePoint::Done, false}};
const Reports notBegun{{CreatePoint::Begin, false}};

Reports create(AttributeTree &tree, const QVariant &payload)
{
    AttributeCreateTask task(tree.notifications.getCreateRegistration(), tree.root, QString(), payload,
                             CreatePoint::Done);
    return RunAndRecord(task);
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
    void overwritesAnExistingAttribute()
    {
        AttributeTree tree;
        createOne(tree, "a.b"_s, 1);
        const auto parent = tree.find("a"_s);
        QCOMPARE(create(tree, QVariant::fromValue(AttributeTree::data("a"_s, 2, 1))), created);
        QCOMPARE(tree.find("a"_s), parent);
        QCOMPARE(tree.value("a"_s), QVariant(2));
        QCOMPARE(parent->getAccess(), quint32(1));
        QCOMPARE(tree.value("a.b"_s), QVariant(1));
    }

    void ensureLeavesAnExistingAttributeAlone()
    {
        AttributeTree tree;
        const auto data = AttributeTree::data("a.b"_s, 2);
        const auto ensure = QVariant::fromValue(AttributeEnsureData(data.name, data.details));
        QCOMPARE(create(tree, ensure), created);
        QCOMPARE(tree.value("a.b"_s), QVariant(2));
        createOne(tree, "a.b"_s, 1);
        QCOMPARE(create(tree, ensure), created);
        QCOMPARE(tree.value("a.b"_s), QVariant(1));
    }

    void refusesImpossiblePlaces()
    {
        AttributeTree tree;
        const auto target = MakeNode<HierarchyNodeInstance>("target"_s);
        tree.root->addChild(MakeNode<HierarchyNodeInstance>("plain"_s));
        tree.root->addChild(MakeNode<HierarchyNodeLink>(target, "readonly"_s, true));
        for (const char *name : {"", "new..a", "new.a.", "plain", "readonly.new"})
            QCOMPARE(createOne(tree, name, 1), notCreated);
        QCOMPARE(tree.root->getNumberOfChildren(), quint64(2));
        QCOMPARE(target->getNumberOfChildren(), quint64(0));
    }

    void walksThroughLinks()
    {
        AttributeTree tree;
        const auto target = MakeNode<HierarchyNodeInstance>("target"_s);
        tree.root->addChild(MakeNode<HierarchyNodeLink>(target, "link"_s, false));
        for (const char *name : {"link.a.b", "link.a.c", "link.a.b"})
            QCOMPARE(createOne(tree, name, 3), created);
        QCOMPARE(target->getChildren(true).size(), 3);
    }

    void list()
    {
        AttributeTree tree;
        const AttributesCreateData list{AttributeTree::data("a"_s, 1), AttributeTree::data(QString(), 2),
                                        AttributeTree::data("b.c"_s, 3)};
        QCOMPARE(create(tree, QVariant::fromValue(list)), created);
        QCOMPARE(tree.value("a"_s), QVariant(1));
        QCOMPARE(tree.value("b.c"_s), QVariant(3));
        QCOMPARE(create(tree, QVariant::fromValue(AttributesCreateData{list.at(1)})), notCreated);
        const auto held = tree.add("held", 1);
        held->markForDeletion();
        AttributeCreateTask beneath(nullptr, std::weak_ptr<Shared::Hierarchy::HierarchyNode>(held), {},
                                    QVariant::fromValue(list), CreatePoint::Done);
        QCOMPARE(RunAndRecord(beneath), notBegun);
    }

    void badPayloads()
    {
        AttributeTree tree;
        const QString nothingToTell = "WARNING AttributeCreateTask::handleCreateNotification() "
                                      "supplied creation data is empty, no notifications send"_s;
        {
            const LogCapture log;
            QCOMPARE(create(tree, 5), notBegun);
            QCOMPARE(log.lines(),
                     (QStringList{"WARNING AttributeCreateTask::runCreate() failed to convert the data "
                                  "into AttributeCreateData or AttributesCreateData, no "
                                  "attribute(s) created"_s,
                                  nothingToTell}));
        }
        const LogCapture log;
        QCOMPARE(create(tree, QVariant::fromValue(AttributesCreateData())), notCreated);
        QCOMPARE(log.lines(),
                 (QStringList{nothingToTell,
                              "WARNING AttributesCreateTask::createAttributesInHierarchy() supplied "
                              "creation data is empty, no data entries created"_s,
                              nothingToTell}));
    }

    void notifiesEachPathOfAList()
    {
        AttributeTree tree;
        const auto parent = tree.add("p"_s, QVariant());
        Notes notes;
        const auto handle = tree.notifications.registerCreateHandler(
            "*",
            [&](const QString &path, const CreatePoint &point, const bool &result) {
                notes.add("%1 %2 %3"_s.arg(path).arg(int(point)).arg(result));
            },
            CreatePoint::All);
        const AttributesCreateData list{AttributeTree::data("a"_s, 1), AttributeTree::data("b.c"_s, 2)};
        create(tree, QVariant::fromValue(list));
        AttributeCreateTask below(tree.notifications.getCreateRegistration(), parent, QString(),
                                  QVariant::fromValue(list.at(1)), CreatePoint::Done);
        below.run();
        QCOMPARE(notes.sorted(6),
                 QStringList({"a 1 1", "a 2 1", "b.c 1 1", "b.c 2 1", "p.b.c 1 1", "p.b.c 2 1"}));
    }

    void simultaneousCreationsShareTheWay()
    {
        AttributeTree tree;
        for (int round = 0; round < 200; ++round) {
            const QString parent = "r%1."_s.arg(round);
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

    void creationAgainstDeletion()
    {
        // A creation that says true and is followed by no deletion must be found, whatever it met on its way.
        AttributeTree tree;
        for (int round = 0; round < 200; ++round) {
            createOne(tree, "a.old"_s, round);
            const auto deletion
                = tree.pool.startDeleteTask(tree.find("a"_s), "a"_s, QVariant(), DeletePoint::Done);
            const auto creation = tree.pool.startCreateTask(
                tree.root, QString(), QVariant::fromValue(AttributeTree::data("a.new"_s, round)),
                CreatePoint::Done);
            deletion->wait();
            creation->wait();
            QCOMPARE(creation->getResult(), created.last());
            const auto parent = tree.find("a"_s);
            QVERIFY(!parent || !parent->hasChild("old"_s));
            QVERIFY(!parent || tree.find("a.new"_s));
        }
    }
};

QTEST_GUILESS_MAIN(AttributeCreateTaskTest)

#include "AttributeCreateTaskTest.moc"
