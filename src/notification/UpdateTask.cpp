#include "UpdateTask.h"

#include <notification/utils/ExceptionBarrier.h>

namespace Tessellum::Notification {

UpdateTask::UpdateTask(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &targetNode,
                       const QVariant &newValue)
    : node(targetNode)
    , value(newValue)
{ }

UpdateTask::~UpdateTask() = default;

void UpdateTask::run()
{
    utils::RunGuarded("UpdateTask", [this] { runUpdate(); });
}

QString UpdateTask::getDescription() const
{
    return describe().text();
}

utils::TaskDescription UpdateTask::describe() const
{
    return {"Update task for path=", QString(), "", node, " value=", value};
}

} // namespace Tessellum::Notification
