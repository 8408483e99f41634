#include <shared/hierarchy/HierarchyNodeLink.h>

#include <QSemaphore>
#include <QtTest>

#include <support/AttributeTree.h>

using namespace Tessellum::AppConfig::Attributes;
using namespace Tessellum::Notification;
using Reports = QList<DeleteObserver::ResultType>;
using Shared::Hierarchy::HierarchyNodeInstance;
using Shared::Hierarchy::HierarchyNodeLink;
using Tessellum::AppConfig::utils::GlobalPoolJobs;
using Tessellum::Notification::utils::MakeNode;
using TestSupport::AttributeTree;

namespace {

Reports remove(AttributeTree &tree, const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node,
               const QString &path)
{
    AttributeDeleteTask task(tree.pool, tree.notifications.getDeleteRegistration(), node, path, QVariant(),
                             DeletePoint::Done);
    return TestSupport::RunAndRecord(task);
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
    void deletes();
    void everyNestedAttributeReportsItsEnd();
    void sparesWhatALinkShows();
    void jobsOfAnEndedRunDoNothing();
};

void AttributeDeleteTaskTest::deletes()
{
    AttributeTree tree;
    const auto attribute = tree.add(QStringLiteral("a"), 1);
    const Reports notThere{{DeletePoint::Begin, false}};
    QCOMPARE(remove(tree, attribute, QStringLiteral("a")),
             (Reports{{DeletePoint::Begin, true}, {DeletePoint::Done, true}}));
    QVERIFY(attribute->isDeleteFlagSet());
    QVERIFY(!tree.find(QStringLiteral("a")));
    QCOMPARE(remove(tree, attribute, QStringLiteral("a")), notThere);
    QCOMPARE(remove(tree, {}, QStringLiteral("a")), notThere);
}

void AttributeDeleteTaskTest::everyNestedAttributeReportsItsEnd()
{
    AttributeTree tree;
    QStringList expected{QStringLiteral("a")};
    for (int i = 0; i < 20; ++i) {
        const QString branch = QStringLiteral("a.b%1").arg(i);
        expected << branch << branch + QStringLiteral(".c") << branch + QStringLiteral(".c.d");
        create(tree, {expected.last()});
    }
    QMutex mutex;
    QStringList heard;
    QSemaphore calls;
    const auto handle = tree.notifications.registerDeleteHandler(
        QStringLiteral("a*"),
        [&](const QString &path, const DeletePoint &, const bool &result) {
            const QMutexLocker locker(&mutex);
            heard.append(result ? path : QStringLiteral("not ") + path);
            calls.release();
        },
        DeletePoint::Done);
    tree.pool.startDeleteTask(tree.find(QStringLiteral("a")), QStringLiteral("a"), QVariant(),
                              DeletePoint::All);
    QVERIFY(calls.tryAcquire(expected.size(), 30000));
    const QMutexLocker locker(&mutex);
    heard.sort();
    expected.sort();
    QCOMPARE(heard, expected);
    QCOMPARE(tree.root->getNumberOfChildren(), quint64(0));
}

void AttributeDeleteTaskTest::sparesWhatALinkShows()
{
    AttributeTree tree;
    create(tree, {QStringLiteral("target.x"), QStringLiteral("a.b")});
    const auto parent = tree.find(QStringLiteral("a"));
    const auto link
        = MakeNode<HierarchyNodeLink>(tree.find(QStringLiteral("target")), QStringLiteral("link"), false);
    parent->addChild(link);
    remove(tree, parent, QStringLiteral("a"));
    QTRY_VERIFY_WITH_TIMEOUT(link->isDeleteFlagSet(), 20000);
    QVERIFY(tree.find(QStringLiteral("target.x")));
}

void AttributeDeleteTaskTest::jobsOfAnEndedRunDoNothing()
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

QTEST_GUILESS_MAIN(AttributeDeleteTaskTest)

#include "AttributeDeleteTaskTest.moc"
