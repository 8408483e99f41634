#include "HandlerRunnable.h"

namespace Tessellum::Notification::utils {

TaskDescription DescribeHandler(const std::shared_ptr<const NotificationHandleBase> &handle)
{
    const QString gone = QStringLiteral("<nullptr>");
    return {"Handler runnable taks with path=", handle ? handle->getPath() : gone, nullptr, {}, " uuid=",
            handle ? handle->getUuid() : gone};
}

} // namespace Tessellum::Notification::utils
