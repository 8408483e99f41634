#include "AttributeWait.h"
#include "RunningLibrary.h"

#include <limits>

namespace Tessellum::Tool {

using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

AttributeWait::AttributeWait(const QStringList &patterns)
{
    const auto notifications = Configuration()->getNotificationInterface();
    for (const QString &pattern : patterns) {
        handles.push_back(notifications->registerCreateHandler(
            pattern, [this](const QString &, const CreatePoint &, const bool &) { changes.release(); },
            CreatePoint::Done));
        handles.push_back(notifications->registerUpdateHandler(
            pattern,
            [this](const QString &, const UpdatePoint &, const UpdateResult &, const QVariant &,
                   const QVariant &) { changes.release(); },
            UpdatePoint::Done));
    }
}

bool AttributeWait::until(const std::function<bool()> &condition, const QDeadlineTimer &deadline)
{
    while (!condition()) {
        const qint64 remaining = qMin<qint64>(deadline.remainingTime(), std::numeric_limits<int>::max());
        if (!changes.tryAcquire(1, static_cast<int>(remaining)))
            return condition();
    }
    return true;
}

QVariant AttributeValue(const QString &path)
{
    QVariant value;
    if (!Configuration()->getQueryInterface()->getValue(path, value, QMetaType::UnknownType))
        return {};
    return value;
}

} // namespace Tessellum::Tool
