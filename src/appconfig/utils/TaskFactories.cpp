#include <appconfig/attributes/AttributeCreateTask.h>
#include <appconfig/attributes/AttributeDeleteTask.h>
#include <appconfig/attributes/AttributeUpdateTask.h>
#include <appconfig/backends/BackendCreateTask.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/TaskFactories.h>

namespace Tessellum::AppConfig::utils {

using Notification::CreatePoint;
using Notification::CreateTask;
using Notification::DeletePoint;
using Notification::DeleteTask;
using Notification::ThreadPool;
using Notification::UpdatePoint;
using Notification::UpdateTask;
using Shared::Hierarchy::HierarchyNode;

namespace {

bool describesAttributes(const QVariant &data)
{
    return data.canConvert<Attributes::AttributeCreateData>()
        || data.canConvert<Attributes::AttributesCreateData>()
        || data.canConvert<Attributes::AttributeEnsureData>();
}

} // namespace

ThreadPool::CreateFactory MakeCreateTaskFactory(RepositoryProvider &repository)
{
    return [&repository](const std::weak_ptr<HierarchyNode> &parent, const QString &path,
                         const QVariant &data, CreatePoint waitPoint) -> std::unique_ptr<CreateTask> {
        const auto notifications = repository.getNotificationProvider();
        const auto examiner = notifications ? notifications->getCreateRegistration() : nullptr;
        if (data.canConvert<Backends::BackendCreateData>()) {
            const auto names = repository.getListPattern(QStringLiteral("names"), QStringLiteral("backends"));
            return std::make_unique<Backends::BackendCreateTask>(examiner, names, parent, path, data,
                                                                 waitPoint);
        }
        if (describesAttributes(data)) {
            return std::make_unique<Attributes::AttributeCreateTask>(examiner, parent, path, data, waitPoint);
        }
        return nullptr;
    };
}

ThreadPool::UpdateFactory MakeUpdateTaskFactory(RepositoryProvider &repository)
{
    return [&repository](const std::weak_ptr<HierarchyNode> &node, const QVariant &value,
                         UpdatePoint waitPoint) -> std::unique_ptr<UpdateTask> {
        const auto notifications = repository.getNotificationProvider();
        const auto examiner = notifications ? notifications->getUpdateRegistration() : nullptr;
        return std::make_unique<Attributes::AttributeUpdateTask>(examiner, node, value, waitPoint);
    };
}

ThreadPool::DeleteFactory MakeDeleteTaskFactory(RepositoryProvider &repository)
{
    return [&repository](const std::weak_ptr<HierarchyNode> &node, const QString &path, const QVariant &data,
                         DeletePoint waitPoint) -> std::unique_ptr<DeleteTask> {
        const auto notifications = repository.getNotificationProvider();
        const auto examiner = notifications ? notifications->getDeleteRegistration() : nullptr;
        return std::make_unique<Attributes::AttributeDeleteTask>(repository.getThreadPool(), examiner, node,
                                                                 path, data, waitPoint);
    };
}

} // namespace Tessellum::AppConfig::utils
