#include "TestTasks.h"

#include <notification/utils/MakeNode.h>
#include <notification/utils/PoolWait.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QtTest>

#include <support/Literals.h>
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
    void waitPoints()
    {
        const auto reached = [](UpdatePoint waitPoint, UpdatePoint point, UpdateResult result) {
            return ReachesWaitPoint(waitPoint, qMakePair(point, result));
        };
        QVERIFY(!reached(UpdatePoint::Done, UpdatePoint::Apply, UpdateResult::Ok));
        QVERIFY(reached(UpdatePoint::Check, UpdatePoint::Check, UpdateResult::Ok));
        QVERIFY(reached(UpdatePoint::Check, UpdatePoint::Failed, UpdateResult::Ok)); // behind
        QVERIFY(reached(UpdatePoint::All, UpdatePoint::Check, UpdateResult::Ok));
        QVERIFY(reached(UpdatePoint::Done, UpdatePoint::Check, UpdateResult::CheckFailed)); // a fault
        QVERIFY(ReachesWaitPoint(CreatePoint::Done, qMakePair(CreatePoint::Begin, false)));
        QVERIFY(!ReachesWaitPoint(CreatePoint::Done, qMakePair(CreatePoint::Begin, true)));
    }

    void judgesTheReportThatEndedTheWait()
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
        QVERIFY(report == qMakePair(UpdatePoint::Check, UpdateResult::Ok));
        QVERIFY(observer->getResult() == qMakePair(UpdatePoint::Done, UpdateResult::NodeGone));
    }

    void endWithoutReport()
    {
        FunctionPool pool;
        const auto observer = pool.run([](UpdateObserver &) {});
        observer->wait();
        observer->wait(); // a second one does not hang either
        QVERIFY(!observer->waitForResult());
        QCOMPARE(int(observer->getResult().first), 0);
        QVERIFY(!WaitForTask(pool, std::shared_ptr<UpdateObserver>()));
    }

    void exceptions()
    {
        const LogCapture log;
        ThreadPool pool(
            "Throwing"_s, MakeTask<ThrowingCreateTask>,
            [](const auto &...arguments) { return std::make_unique<FunctionTask>(arguments...); },
            MakeTask<ThrowingDeleteTask>, 2, false);
        const auto created = pool.startCreateTask({}, QString(), QVariant(), CreatePoint::Done);
        const auto updated = pool.startUpdateTask(
            {}, QVariant::fromValue<UpdateBody>([](UpdateObserver &) { throw std::bad_alloc(); }),
            UpdatePoint::Done);
        const auto deleted = pool.startDeleteTask({}, QString(), QVariant(), DeletePoint::Done);
        QVERIFY(!WaitForTask(pool, created));
        QVERIFY(!WaitForTask(pool, updated));
        QVERIFY(!WaitForTask(pool, deleted));
        QVERIFY(created->getResult() == qMakePair(CreatePoint::Begin, true));
        QStringList lines = log.lines();
        lines.sort();
        QCOMPARE(lines,
                 QStringList({"CRITICAL CreateTask::run() catched exception"_s,
                              "CRITICAL DeleteTask::run() catched exception"_s,
                              "CRITICAL UpdateTask::run() catched exception"_s}));
    }

    void descriptions()
    {
        using Tessellum::Notification::utils::MakeNode;
        const auto root = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>();
        const auto node = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>("motor");
        QVERIFY(root->addChild(node));
        const QString path = "a.b";
        const QPair<QString, const char *> expected[]
            = {{ThrowingCreateTask(node, path).getDescription(), "Create task for path=a.b root=motor"},
               {ThrowingCreateTask({}, path).getDescription(), "Create task for path=a.b root=<nullptr>"},
               {ThrowingDeleteTask(node, path).getDescription(), "Delete task for path=a.b"},
               {FunctionTask(node, 2.5, UpdatePoint::Done).getDescription(),
                "Update task for path=motor value=2.5"},
               {FunctionTask({}, path, UpdatePoint::Done).getDescription(),
                "Update task for path=<nullptr> value=a.b"}};
        for (const auto &[description, text] : expected)
            QCOMPARE(description, QString(text));
    }
};

QTEST_GUILESS_MAIN(TaskTest)
#include "TaskTest.moc"
