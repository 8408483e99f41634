#pragma once

#include <notification/ThreadPool.h>

#include <QSemaphore>
#include <QVariant>

#include <functional>
#include <memory>
#include <support/Literals.h>

namespace TestSupport {

// An update task whose value is the function that it runs.
using UpdateBody = std::function<void(Tessellum::Notification::UpdateObserver &)>;

} // namespace TestSupport

Q_DECLARE_METATYPE(TestSupport::UpdateBody)

namespace TestSupport {

using namespace Tessellum::Notification;

constexpr int Patience = 30000; // milliseconds; reached on failure alone

class FunctionTask : public UpdateTask
{
public:
    FunctionTask(const ThreadPool::NodePointer &target, const QVariant &body, UpdatePoint waitPoint)
        : UpdateTask(target, body)
        , observer(std::make_shared<UpdateObserver>([waitPoint](const UpdateObserver::ResultType &result) {
            return ReachesWaitPoint(waitPoint, result);
        }))
    { }

    UpdateObserver::ResultType runUpdate() override
    {
        value.value<UpdateBody>()(*observer);
        return observer->getResult();
    }
    std::shared_ptr<UpdateObserver> getObserver() override { return observer; }

private:
    const std::shared_ptr<UpdateObserver> observer;
};

// A pool whose update tasks run functions.
class FunctionPool : public ThreadPool
{
public:
    explicit FunctionPool(bool beginsStopped = false)
        : ThreadPool(
            "FunctionPool"_s, {},
            [](const NodePointer &node, const QVariant &value, UpdatePoint waitPoint) {
                return std::make_unique<FunctionTask>(node, value, waitPoint);
            },
            {}, QThread::idealThreadCount(), beginsStopped)
    { }

    std::shared_ptr<UpdateObserver> run(const UpdateBody &body, UpdatePoint waitPoint = UpdatePoint::Done)
    {
        return startUpdateTask({}, QVariant::fromValue(body), waitPoint);
    }
};

inline const auto ReportDone = [](UpdateObserver &observer) {
    observer.report({UpdatePoint::Done, UpdateResult::Ok});
};

} // namespace TestSupport
