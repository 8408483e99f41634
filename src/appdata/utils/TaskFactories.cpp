#include <appconfig/attributes/AttributeCreateTask.h>
#include <appconfig/attributes/AttributeUpdateTask.h>
#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementsCreateTask.h>
#include <appdata/data/elements/ElementsDeleteTask.h>
#include <appdata/data/elements/ElementUpdateTask.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/EntryCreateTask.h>
#include <appdata/data/entries/EntryDeleteTask.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageCreateTask.h>
#include <appdata/storages/StorageDeleteTask.h>
#include <appdata/utils/RepositoryProvider.h>
#include <appdata/utils/TaskFactories.h>

namespace Tessellum::AppData::utils {

using Data::Elements::Element;
using Data::Elements::ElementsCreateTask;
using Data::Elements::ElementsDeleteTask;
using Data::Elements::ElementUpdateData;
using Data::Elements::ElementUpdateTask;
using Data::Entries::Entry;
using Data::Entries::EntryCreateTask;
using Data::Entries::EntryDeleteTask;
using Notification::CreatePoint;
using Notification::CreateTask;
using Notification::DeletePoint;
using Notification::DeleteTask;
using Notification::ThreadPool;
using Notification::UpdatePoint;
using Notification::UpdateTask;
using Shared::Hierarchy::HierarchyNode;
using Storages::Storage;
using Storages::StorageCreateData;
using Storages::StorageCreateTask;
using Storages::StorageDeleteTask;

ThreadPool::CreateFactory MakeCreateTaskFactory(RepositoryProvider &repository)
{
    return [&repository](const std::weak_ptr<HierarchyNode> &parent, const QString &path,
                         const QVariant &data, CreatePoint waitPoint) -> std::unique_ptr<CreateTask> {
        using namespace AppConfig::Attributes;
        const auto notifications = repository.getNotificationProvider();
        const auto examiner = notifications ? notifications->getCreateRegistration() : nullptr;
        if (data.userType() == qMetaTypeId<StorageCreateData>())
            return std::make_unique<StorageCreateTask>(examiner, parent, path, data, waitPoint);
        if (ElementsCreateTask::Accepts(data))
            return std::make_unique<ElementsCreateTask>(examiner, parent, path, data, waitPoint);
        if (EntryCreateTask::Accepts(data))
            return std::make_unique<EntryCreateTask>(examiner, parent, path, data, waitPoint);
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
        if (value.userType() == qMetaTypeId<ElementUpdateData>())
            return std::make_unique<ElementUpdateTask>(examiner, node, value, waitPoint);
        return std::make_unique<AppConfig::Attributes::AttributeUpdateTask>(examiner, node, value, waitPoint);
    };
}

ThreadPool::DeleteFactory MakeDeleteTaskFactory(RepositoryProvider &repository)
{
    return [&repository](const std::weak_ptr<HierarchyNode> &node, const QString &path, const QVariant &data,
                         DeletePoint waitPoint) -> std::unique_ptr<DeleteTask> {
        const auto notifications = repository.getNotificationProvider();
        const auto examiner = notifications ? notifications->getDeleteRegistration() : nullptr;
        const auto target = node.lock();
        if (const auto element = std::dynamic_pointer_cast<Element>(target))
            return std::make_unique<ElementsDeleteTask>(examiner, node, path,
                                                        QVariant::fromValue(element->copyData()), waitPoint);
        if (std::dynamic_pointer_cast<Storage>(target))
            return std::make_unique<StorageDeleteTask>(examiner, node, path, data, waitPoint);
        if (std::dynamic_pointer_cast<Entry>(target))
            return std::make_unique<EntryDeleteTask>(repository.getThreadPool(), examiner, node, path, data,
                                                     waitPoint);
        return nullptr;
    };
}

} // namespace Tessellum::AppData::utils
