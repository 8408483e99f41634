#include "Examiner.h"

#include <QUuid>

namespace Tessellum::Notification {

Examiner::Examiner()
    : m_uuid(QUuid::createUuid().toString())
{ }

Examiner::~Examiner() = default;

bool Examiner::addConnection(const std::shared_ptr<utils::WrappedNotificationHandle> &handle)
{
    const auto inner = handle ? handle->getHandle() : nullptr;
    if (!inner)
        return false;
    const QWriteLocker locker(&m_lock);
    auto &connection = m_connections[inner->getUuid()];
    if (!connection)
        connection = std::make_shared<ExaminerConnection>(inner);
    return true;
}

bool Examiner::removeConnection(const QString &uuid)
{
    return takeConnection(uuid) != nullptr;
}

std::shared_ptr<ExaminerConnection> Examiner::takeConnection(const QString &uuid)
{
    const QWriteLocker locker(&m_lock);
    return m_connections.take(uuid);
}

QList<std::shared_ptr<ExaminerConnection>> Examiner::getConnections() const
{
    const QReadLocker locker(&m_lock);
    return m_connections.values();
}

bool Examiner::isEmpty() const
{
    const QReadLocker locker(&m_lock);
    return m_connections.isEmpty();
}

} // namespace Tessellum::Notification
