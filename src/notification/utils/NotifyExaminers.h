#pragma once

#include <notification/ExaminerRegistration.h>
#include <shared/hierarchy/HierarchyNode.h>
#include <shared/hierarchy/HierarchyStringPath.h>

namespace Tessellum::Notification::utils {

/*!
 * Tells the handlers registered for \a path and \a point: with (path, point, result), for updates
 * (path, point, result, old value, new value). Nothing happens without a registration. Runs on a task's
 * thread and never waits for a handler.
 */
template <class Point, class... Arguments>
void NotifyExaminers(const std::shared_ptr<ExaminerRegistration<Point>> &registration, const QString &path,
                     const Point &point, const Arguments &...arguments)
{
    if (!registration || !registration->hears(point))
        return;
    const auto examiners = registration->getExaminers(path, point, 1);
    for (const auto &examiner : examiners) {
        const auto connections = examiner->getConnections();
        for (const auto &connection : connections)
            connection->notify(path, point, arguments...);
    }
}

/*! As above for the full path of \a node, which is read only if somebody listens; nothing if it has gone. */
template <class Point, class... Arguments>
void NotifyExaminers(const std::shared_ptr<ExaminerRegistration<Point>> &registration,
                     const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node, const Point &point,
                     const Arguments &...arguments)
{
    if (!registration || !registration->hears(point))
        return;
    QString path;
    if (const auto target = node.lock())
        path = target->getNodePath()->getFullPath();
    else
        return;
    NotifyExaminers(registration, path, point, arguments...);
}

} // namespace Tessellum::Notification::utils
