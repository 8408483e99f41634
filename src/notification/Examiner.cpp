#include "Examiner.h"

#include <QUuid>

namespace Tessellum::Notification {

Examiner::Examiner()
    : uuid(QUuid::createUuid().toString())
{ }

Examiner::~Examiner() = default;

bool Examiner::addConnection(const std::shared_ptr<utils::WrappedNotificationHandle> &handle)
{
    const auto inner = handle ? handle->getHandle() : nullptr;
    if (!inner)
        return false;
    const QWriteLocker locker(&lock);
    auto &connection = connections[inner->getUuid()];
    if (!connection)
        connection = std::make_shared<ExaminerConnection>(inner);
    return true;
}

bool Examiner::removeConnection(const QString &handleUuid)
{
    return takeConnection(handleUuid) != nullptr;
}

std::shared_ptr<ExaminerConnection> Examiner::takeConnection(const QString &handleUuid)
{
    const QWriteLocker locker(&lock);
    return connections.take(handleUuid);
}

QList<std::shared_ptr<ExaminerConnection>> Examiner::getConnections() const
{
    const QReadLocker locker(&lock);
    return connections.values();
}

bool Examiner::isEmpty() const
{
    const QReadLocker locker(&lock);
    return connections.isEmpty();
}

} // namespace Tessellum::Notification
