#include "TestTasks.h"

#include <notification/utils/MakeNode.h>
#include <notification/utils/PoolWait.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QtTest>

#include <support/LogCapture.h>

using namespace TestSupport;
using Tessellum::Notification::utils::WaitForTask;

namespace {

class ThrowingCreateTask : public CreateTask
{
public:
    using CreateTask::CreateTask;
    ResultType runCreate() override
    {
        observer->report({CreatePoint::Begin, true});
        throw 42;
    }
    std::shared_ptr<CreateObserver> getObserver() override { return observer; }

private:
    const std::shared_ptr<CreateObserver> observer = std::make_shared<CreateObserver>(
        [](const ResultType &result) { return ReachesWaitPoint(CreatePoint::Done, result); });
};

class ThrowingDeleteTask : public DeleteTask
{
public:
    using DeleteTask::DeleteTask;
    ResultType runDelete() override { throw std::runtime_error("no"); }
    std::shared_ptr<DeleteObserver> getObserver() override { return observer; }

private:
    const std::shared_ptr<DeleteObserver> observer = std::make_shared<DeleteObserver>();
};

template <class Task>
std::unique_ptr<Task> MakeTask(const ThreadPool::NodePointer &root, const QString &path, const QVariant &data,
                               typename Task::Point)
{
    return std::make_unique<Task>(root, path, data);
}

} // namespace

class TaskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void waitPoints_data();
    void waitPoints();
    void judgesTheReportThatEndedTheWait();
    void waiterIsReleasedBeforeTheResultHandler();
    void emptyFinishedFunctionIsAFault();
    void endWithoutReport();
    void exceptions();
    void descriptions();
    void metatypeNames();
};

void TaskTest::waitPoints_data()
{
    QTest::addColumn<int>("waitPoint");
    QTest::addColumn<int>("point");
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("reached");
    const auto row
        = [](const char *name, UpdatePoint waitPoint, UpdatePoint point, UpdateResult result, bool reached) {
              QTest::newRow(name) << int(waitPoint) << int(point) << int(result) << reached;
          };
    row("before", UpdatePoint::Done, UpdatePoint::Apply, UpdateResult::Ok, false);
    row("at", UpdatePoint::Check, UpdatePoint::Check, UpdateResult::Ok, true);
    row("behind", UpdatePoint::Check, UpdatePoint::Failed, UpdateResult::Ok, true);
    row("first of all", UpdatePoint::All, UpdatePoint::Check, UpdateResult::Ok, true);
    row("fault", UpdatePoint::Done, UpdatePoint::Check, UpdateResult::CheckFailed, true);
}

void TaskTest::waitPoints()
{
    QFETCH(int, waitPoint);
    QFETCH(int, point);
    QFETCH(int, result);
    QTEST(ReachesWaitPoint(UpdatePoint(waitPoint), qMakePair(UpdatePoint(point), UpdateResult(result))),
          "reached");
    QVERIFY(ReachesWaitPoint(CreatePoint::Done, qMakePair(CreatePoint::Begin, false)));
    QVERIFY(!ReachesWaitPoint(CreatePoint::Done, qMakePair(CreatePoint::Begin, true)));
}

void TaskTest::judgesTheReportThatEndedTheWait()
{
    FunctionPool pool;
    const auto observer = pool.run(
        [](UpdateObserver &reports) {
            reports.report({UpdatePoint::Check, UpdateResult::Ok});
            reports.report({UpdatePoint::Failed, UpdateResult::ApplyFailed});
            reports.report({UpdatePoint::Done, UpdateResult::NodeGone});
        },
        UpdatePoint::Check);
    QTRY_VERIFY_WITH_TIMEOUT(observer->isEnded(), Patience);
    const auto report = WaitForTask(pool, observer);
    QVERIFY(report);
    QCOMPARE(report->first, UpdatePoint::Check);
    QCOMPARE(report->second, UpdateResult::Ok);
    QCOMPARE(observer->getResult().first, UpdatePoint::Done);
    QCOMPARE(observer->getResult().second, UpdateResult::NodeGone);
}

void TaskTest::waiterIsReleasedBeforeTheResultHandler()
{
    bool finishedBefore = false;
    UpdateObserver observer([](const auto &) { return true; });
    observer.onResult = [&](const auto &) { finishedBefore = observer.hasFinished(); };
    observer.report({UpdatePoint::Check, UpdateResult::Ok});
    QVERIFY(finishedBefore);
}

void TaskTest::emptyFinishedFunctionIsAFault()
{
    UpdateObserver observer;
    QVERIFY_EXCEPTION_THROWN(observer.report({UpdatePoint::Check, UpdateResult::Ok}), std::bad_function_call);
    QCOMPARE(observer.getResult().first, UpdatePoint::Check);
}

void TaskTest::endWithoutReport()
{
    FunctionPool pool;
    const auto observer = pool.run([](UpdateObserver &) {});
    observer->wait();
    observer->wait(); // a second one does not hang either
    QVERIFY(!observer->waitForResult());
    QCOMPARE(int(observer->getResult().first), 0);
    QVERIFY(!WaitForTask(pool, std::shared_ptr<UpdateObserver>()));
}

void TaskTest::exceptions()
{
    const LogCapture log;
    ThreadPool pool(
        QStringLiteral("Throwing"), MakeTask<ThrowingCreateTask>,
        [](const ThreadPool::NodePointer &node, const QVariant &value, UpdatePoint point) {
            return std::make_unique<FunctionTask>(node, value, point);
        },
        MakeTask<ThrowingDeleteTask>, 2, false);
    const auto created = pool.startCreateTask({}, QString(), QVariant(), CreatePoint::Done);
    const auto updated = pool.startUpdateTask(
        {}, QVariant::fromValue<UpdateBody>([](UpdateObserver &) { throw std::bad_alloc(); }),
        UpdatePoint::Done);
    const auto deleted = pool.startDeleteTask({}, QString(), QVariant(), DeletePoint::Done);
    QVERIFY(!WaitForTask(pool, created));
    QVERIFY(!WaitForTask(pool, updated));
    QVERIFY(!WaitForTask(pool, deleted));
    QCOMPARE(created->getResult().first, CreatePoint::Begin);
    QCOMPARE(created->getResult().second, true);

    QStringList lines = log.lines();
    lines.sort();
    QCOMPARE(lines,
             QStringList({QStringLiteral("CRITICAL CreateTask::run() catched exception"),
                          QStringLiteral("CRITICAL DeleteTask::run() catched exception"),
                          QStringLiteral("CRITICAL UpdateTask::run() catched exception")}));
}

void TaskTest::descriptions()
{
    using Tessellum::Notification::utils::MakeNode;
    const auto root = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>();
    const auto node = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>(QStringLiteral("motor"));
    QVERIFY(root->addChild(node));
    const QString path = QStringLiteral("a.b");
    QCOMPARE(ThrowingCreateTask(node, path).getDescription(),
             QStringLiteral("Create task for path=a.b root=motor"));
    QCOMPARE(ThrowingCreateTask({}, path).getDescription(),
             QStringLiteral("Create task for path=a.b root=<nullptr>"));
    QCOMPARE(ThrowingDeleteTask(node, path).getDescription(), QStringLiteral("Delete task for path=a.b"));
    QCOMPARE(FunctionTask(node, 2.5, UpdatePoint::Done).getDescription(),
             QStringLiteral("Update task for path=motor value=2.5"));
    QCOMPARE(FunctionTask({}, path, UpdatePoint::Done).getDescription(),
             QStringLiteral("Update task for path=<nullptr> value=a.b"));
}

void TaskTest::metatypeNames()
{
    QCOMPARE(QMetaType::typeName(qMetaTypeId<CreateObserver::ResultType>()),
             "Tessellum::Notification::CreateObserver::ResultType");
    QCOMPARE(QMetaType::typeName(qMetaTypeId<UpdateObserver::ResultType>()),
             "Tessellum::Notification::UpdateObserver::ResultType");
    QCOMPARE(QMetaType::typeName(qMetaTypeId<UpdateResult>()), "Tessellum::Notification::UpdateResult");
}

QTEST_GUILESS_MAIN(TaskTest)
#include "TaskTest.moc"
