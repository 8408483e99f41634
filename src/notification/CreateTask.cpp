#include "CreateTask.h"

#include <notification/utils/ExceptionBarrier.h>

namespace Tessellum::Notification {

CreateTask::CreateTask(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &rootNode,
                       const QString &taskPath, const QVariant &taskData)
    : PlaceTask(rootNode, taskPath, taskData)
{ }

CreateTask::~CreateTask() = default;

void CreateTask::run()
{
    utils::RunGuarded("CreateTask", [this] { runCreate(); });
}

QString CreateTask::getDescription() const
{
    return describe().text();
}

utils::TaskDescription CreateTask::describe() const
{
    return {"Create task for path=", path, " root=", root, nullptr, QVariant()};
}

} // namespace Tessellum::Notification
