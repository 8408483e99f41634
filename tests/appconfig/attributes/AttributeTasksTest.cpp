#include <shared/hierarchy/HierarchyNodeLink.h>

#include <QSemaphore>
#include <QtTest>

#include <support/AttributeTree.h>

using namespace TestSupport;
using Reports = QList<CreateObserver::ResultType>;
using Shared::Hierarchy::HierarchyNodeLink;
using Deletions = QList<DeleteObserver::ResultType>;
using Tessellum::AppConfig::utils::GlobalPoolJobs;

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

Deletions remove(AttributeTree &tree, const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node,
                 const QString &path)
{
    AttributeDeleteTask task(tree.pool, tree.notifications.getDeleteRegistration(), node, path, QVariant(),
                             DeletePoint::Done);
    return RunAndRecord(task);
}

} // namespace

/*! Creation and deletion. */
class AttributeTasksTest : public QObject
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

    void everyNestedAttributeReportsItsEnd()
    {
        AttributeTree tree;
        QStringList expected{"a"_s};
        for (int i = 0; i < 20; ++i) {
            const QString branch = "a.b%1"_s.arg(i);
            expected << branch << branch + ".c"_s << branch + ".c.d"_s;
            createOne(tree, expected.last(), 1);
        }
        Notes notes;
        const auto handle = tree.notifications.registerDeleteHandler(
            "a*",
            [&](const QString &path, const DeletePoint &, const bool &result) {
                notes.add(result ? path : "not " + path);
            },
            DeletePoint::Done);
        tree.pool.startDeleteTask(tree.find("a"_s), "a"_s, QVariant(), DeletePoint::All);
        expected.sort();
        QCOMPARE(notes.sorted(expected.size()), expected);
        QCOMPARE(tree.root->getNumberOfChildren(), quint64(0));
    }

    void sparesWhatALinkShows()
    {
        AttributeTree tree;
        createOne(tree, "target.x", 1);
        createOne(tree, "a.b", 1);
        const auto parent = tree.find("a"_s);
        const auto link = MakeNode<HierarchyNodeLink>(tree.find("target"_s), "link"_s, false);
        parent->addChild(link);
        QCOMPARE(remove(tree, parent, "a"_s),
                 (Deletions{{DeletePoint::Begin, true}, {DeletePoint::Done, true}}));
        QCOMPARE(remove(tree, parent, "a"_s), (Deletions{{DeletePoint::Begin, false}}));
        QTRY_VERIFY_WITH_TIMEOUT(link->isDeleteFlagSet(), 20000);
        QVERIFY(tree.find("target.x"_s));
    }

    void jobsOfAnEndedRunDoNothing()
    {
        // All threads of the global pool are taken, so that the jobs are still queued when the run ends.
        QThreadPool *const globalPool = QThreadPool::globalInstance();
        const int threads = globalPool->maxThreadCount();
        QSemaphore started;
        QSemaphore mayGoOn;
        const auto letGo = qScopeGuard([&] {
            mayGoOn.release(threads);
            globalPool->waitForDone();
        });
        for (int i = 0; i < threads; ++i)
            globalPool->start([&] {
                started.release();
                mayGoOn.acquire();
            });
        QVERIFY(started.tryAcquire(threads, 20000));

        std::atomic<int> ran{0};
        GlobalPoolJobs::Start([&ran] { ++ran; });
        GlobalPoolJobs::EndRunAndWait();
        GlobalPoolJobs::BeginRun();
        GlobalPoolJobs::Start([&ran] { ran += 10; });
        mayGoOn.release(threads);
        globalPool->waitForDone();
        QCOMPARE(ran.load(), 10);

        // The end of a run waits for the job that runs.
        GlobalPoolJobs::Start([&] {
            started.release();
            mayGoOn.acquire();
            ++ran;
        });
        QVERIFY(started.tryAcquire(1, 20000));
        const std::unique_ptr<QThread> ender(QThread::create([] { GlobalPoolJobs::EndRunAndWait(); }));
        const quint64 run = GlobalPoolJobs::CurrentRun();
        ender->start();
        QTRY_VERIFY_WITH_TIMEOUT(GlobalPoolJobs::CurrentRun() != run, 20000);
        QVERIFY(!ender->wait(50));
        mayGoOn.release();
        QVERIFY(ender->wait(20000));
        QCOMPARE(ran.load(), 11);
    }
};

QTEST_GUILESS_MAIN(AttributeTasksTest)
#include "AttributeTasksTest.moc"
