#include "NotificationThreadPool.h"

#include <QThread>

namespace Tessellum::Notification {

utils::HandlerPool &NotificationThreadPool()
{
    // Never destroyed: tasks may still report while the process ends.
    static auto *const pool = new utils::HandlerPool(QStringLiteral("NotificationThreadPool"),
                                                     QThread::idealThreadCount(), false);
    return *pool;
}

void setNotificationPoolRunning(bool running)
{
    if (running)
        NotificationThreadPool().start();
    else
        NotificationThreadPool().stopAndWait();
}

} // namespace Tessellum::Notification
