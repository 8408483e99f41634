#pragma once

#include <appconfig/attributes/AttributeCreateTask.h>
#include <appconfig/attributes/AttributeDeleteTask.h>
#include <appconfig/attributes/AttributeUpdateTask.h>
#include <appconfig/utils/GlobalPoolJobs.h>
#include <notification/ThreadPool.h>
#include <notification/utils/MakeNode.h>
#include <notification/utils/NotificationProvider.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <support/Literals.h>
#include <support/LogCapture.h>
#include <support/Notes.h>

namespace TestSupport {

using namespace Tessellum::AppConfig;
using namespace Tessellum::AppConfig::Attributes;
using namespace Tessellum::Notification;
using Shared::Hierarchy::HierarchyNodeInstance;
using Tessellum::Notification::utils::MakeNode;

// A tree of attributes with a pool of tasks and registrations of its own, apart from the repository's.
class AttributeTree
{
public:
    AttributeTree()
        : pool(
            "test"_s,
            [this](const auto &...arguments) {
                return std::make_unique<AttributeCreateTask>(notifications.getCreateRegistration(),
                                                             arguments...);
            },
            [this](const auto &...arguments) {
                return std::make_unique<AttributeUpdateTask>(notifications.getUpdateRegistration(),
                                                             arguments...);
            },
            [this](const auto &...arguments) {
                return std::make_unique<AttributeDeleteTask>(pool, notifications.getDeleteRegistration(),
                                                             arguments...);
            },
            QThread::idealThreadCount(), false)
    { }
    ~AttributeTree()
    {
        pool.stopAndWait();
        Tessellum::AppConfig::utils::GlobalPoolJobs::EndRunAndWait(); // its jobs know the pool
    }
    AttributeTree(const AttributeTree &) = delete;
    AttributeTree &operator=(const AttributeTree &) = delete;

    // A plain attribute beneath the root; path of one element.
    std::shared_ptr<Attribute> add(const QString &id, const QVariant &value)
    {
        const auto attribute = MakeNode<Attribute>(id, value);
        return root->addChild(attribute) ? attribute : nullptr;
    }
    std::shared_ptr<Attribute> find(const QString &path) const
    {
        return std::dynamic_pointer_cast<Attribute>(root->findChildByRelativePath(path));
    }
    QVariant value(const QString &path) const
    {
        QVariant out;
        const auto attribute = find(path);
        return attribute && attribute->getValue(out, 0) ? out : QVariant();
    }
    static AttributeCreateData data(const QString &name, const QVariant &value, quint32 access = 3)
    {
        AttributeCreateData::AttributeCreateDataDetails details;
        details.value = value;
        details.access = access;
        return AttributeCreateData(name, details);
    }

    Tessellum::Notification::utils::NotificationProvider notifications;
    const std::shared_ptr<Shared::Hierarchy::HierarchyNode> root = MakeNode<HierarchyNodeInstance>();
    ThreadPool pool;
};

// Runs a task on the calling thread; what it reports, in its order.
template <class Task>
QList<typename Task::ResultType> RunAndRecord(Task &task)
{
    QList<typename Task::ResultType> reports;
    const auto observer = task.getObserver();
    observer->onResult = [&reports, next = observer->onResult](const typename Task::ResultType &report) {
        reports.append(report);
        next(report);
    };
    task.run();
    return reports;
}

} // namespace TestSupport
