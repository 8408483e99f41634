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

namespace TestSupport {

// A tree of attributes with a pool of tasks and registrations of its own, apart from the repository's.
class AttributeTree
{
public:
    using Attribute = Tessellum::AppConfig::Attributes::Attribute;
    using AttributeCreateData = Tessellum::AppConfig::Attributes::AttributeCreateData;

    AttributeTree()
        : pool(
            "test"_s,
            [this](const auto &parent, const QString &path, const QVariant &data, auto waitPoint) {
                return std::make_unique<Tessellum::AppConfig::Attributes::AttributeCreateTask>(
                    notifications.getCreateRegistration(), parent, path, data, waitPoint);
            },
            [this](const auto &node, const QVariant &value, auto waitPoint) {
                return std::make_unique<Tessellum::AppConfig::Attributes::AttributeUpdateTask>(
                    notifications.getUpdateRegistration(), node, value, waitPoint);
            },
            [this](const auto &node, const QString &path, const QVariant &data, auto waitPoint) {
                return std::make_unique<Tessellum::AppConfig::Attributes::AttributeDeleteTask>(
                    pool, notifications.getDeleteRegistration(), node, path, data, waitPoint);
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
        const auto attribute = Tessellum::Notification::utils::MakeNode<Attribute>(id, value);
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
    const std::shared_ptr<Shared::Hierarchy::HierarchyNode> root
        = Tessellum::Notification::utils::MakeNode<Shared::Hierarchy::HierarchyNodeInstance>();
    Tessellum::Notification::ThreadPool pool;
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
