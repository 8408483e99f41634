#include <shared/hierarchy/HierarchyNodeLink.h>

#include <QSemaphore>
#include <QtTest>

#include <support/AttributeTree.h>
#include <support/Literals.h>
#include <support/Notes.h>

using namespace TestSupport;
using Reports = QList<DeleteObserver::ResultType>;
using Shared::Hierarchy::HierarchyNodeLink;
using Tessellum::AppConfig::utils::GlobalPoolJobs;

namespace {

Reports remove(AttributeTree &tree, const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node,
               const QString &path)
{
    AttributeDeleteTask task(tree.pool, tree.notifications.getDeleteRegistration(), node, path, QVariant(),
                             DeletePoint::Done);
    return RunAndRecord(task);
}

void create(AttributeTree &tree, const QStringList &names)
{
    for (const QString &name : names)
        tree.pool
            .startCreateTask(tree.root, QString(), QVariant::fromValue(AttributeTree::data(name, 1)),
                             CreatePoint::Done)
            ->wait();
}

} // namespace

class AttributeDeleteTaskTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void everyNestedAttributeReportsItsEnd()
    {
        AttributeTree tree;
        QStringList expected{"a"_s};
        for (int i = 0; i < 20; ++i) {
            const QString branch = "a.b%1"_s.arg(i);
            expected << branch << branch + ".c"_s << branch + ".c.d"_s;
            create(tree, {expected.last()});
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
        create(tree, {"target.x"_s, "a.b"_s});
        const auto parent = tree.find("a"_s);
        const auto link = MakeNode<HierarchyNodeLink>(tree.find("target"_s), "link"_s, false);
        parent->addChild(link);
        QCOMPARE(remove(tree, parent, "a"_s),
                 (Reports{{DeletePoint::Begin, true}, {DeletePoint::Done, true}}));
        QCOMPARE(remove(tree, parent, "a"_s), (Reports{{DeletePoint::Begin, false}}));
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

QTEST_GUILESS_MAIN(AttributeDeleteTaskTest)

#include "AttributeDeleteTaskTest.moc"
