#include "DeleteTask.h"

#include <notification/utils/ExceptionBarrier.h>

namespace Tessellum::Notification {

DeleteTask::DeleteTask(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &rootNode,
                       const QString &taskPath, const QVariant &taskData)
    : PlaceTask(rootNode, taskPath, taskData)
{ }

DeleteTask::~DeleteTask() = default;

void DeleteTask::run()
{
    utils::RunGuarded("DeleteTask", [this] { runDelete(); });
}

QString DeleteTask::getDescription() const
{
    return describe().text();
}

utils::TaskDescription DeleteTask::describe() const
{
    return {"Delete task for path=", path, nullptr, {}, nullptr, QVariant()};
}

} // namespace Tessellum::Notification
