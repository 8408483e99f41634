#include "ExaminerConnection.h"

#include <shared/logging/FrameworkLog.h>

namespace Tessellum::Notification {

ExaminerConnection::ExaminerConnection(const std::shared_ptr<utils::NotificationHandleBase> &target)
    : handle(target)
{ }

ExaminerConnection::~ExaminerConnection()
{
    const auto living = handle.lock();
    Shared::Logging::FrameworkLog().debug()
        << "ExaminerConnection::~ExaminerConnection() uuid="
        << (living ? living->getUuid() : QStringLiteral("<already deleted>"));
}

} // namespace Tessellum::Notification
