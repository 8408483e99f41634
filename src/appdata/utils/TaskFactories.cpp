#include <appconfig/attributes/AttributeCreateTask.h>
#include <appconfig/attributes/AttributeUpdateTask.h>
#include <appdata/utils/RepositoryProvider.h>
#include <appdata/utils/TaskFactories.h>

namespace Tessellum::AppData::utils {

using Notification::CreatePoint;
using Notification::CreateTask;
using Notification::DeletePoint;
using Notification::DeleteTask;
using Notification::ThreadPool;
using Notification::UpdatePoint;
using Notification::UpdateTask;
using Shared::Hierarchy::HierarchyNode;

ThreadPool::CreateFactory MakeCreateTaskFactory(RepositoryProvider &repository)
{
    return [&repository](const std::weak_ptr<HierarchyNode> &parent, const QString &path,
                         const QVariant &data, CreatePoint waitPoint) -> std::unique_ptr<CreateTask> {
        using namespace AppConfig::Attributes;
        const auto notifications = repository.getNotificationProvider();
        const auto examiner = notifications ? notifications->getCreateRegistration() : nullptr;
        if (data.canConvert<AttributeCreateData>() || data.canConvert<AttributesCreateData>())
            return std::make_unique<AttributeCreateTask>(examiner, parent, path, data, waitPoint);
        return nullptr;
    };
}

ThreadPool::UpdateFactory MakeUpdateTaskFactory(RepositoryProvider &repository)
{
    return [&repository](const std::weak_ptr<HierarchyNode> &node, const QVariant &value,
                         UpdatePoint waitPoint) -> std::unique_ptr<UpdateTask> {
        const auto notifications = repository.getNotificationProvider();
        const auto examiner = notifications ? notifications->getUpdateRegistration() : nullptr;
        return std::make_unique<AppConfig::Attributes::AttributeUpdateTask>(examiner, node, value, waitPoint);
    };
}

ThreadPool::DeleteFactory MakeDeleteTaskFactory(RepositoryProvider & /*repository*/)
{
    return [](const std::weak_ptr<HierarchyNode> &, const QString &, const QVariant &,
              DeletePoint) -> std::unique_ptr<DeleteTask> { return nullptr; };
}

} // namespace Tessellum::AppData::utils
