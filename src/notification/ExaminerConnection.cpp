#include "ExaminerConnection.h"

#include <shared/logging/FrameworkLog.h>

namespace Tessellum::Notification {

ExaminerConnection::ExaminerConnection(const std::shared_ptr<utils::NotificationHandleBase> &handle)
    : m_handle(handle)
{ }

ExaminerConnection::~ExaminerConnection()
{
    const auto handle = m_handle.lock();
    Shared::Logging::FrameworkLog().debug()
        << "ExaminerConnection::~ExaminerConnection() uuid="
        << (handle ? handle->getUuid() : QStringLiteral("<already deleted>"));
}

} // namespace Tessellum::Notification
