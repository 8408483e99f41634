#include "EnumNames.h"
#include "RunningLibrary.h"
#include "Watches.h"

namespace Tessellum::Tool {

using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

template <typename Point>
QVariantMap notice(const char *kind, int number, const QString &path, Point point)
{
    return {{QStringLiteral("notify"), QString::fromLatin1(kind)},
            {QStringLiteral("watch"), number},
            {QStringLiteral("path"), path},
            {QStringLiteral("point"), EnumJson(point)}};
}

} // namespace

Watches::Watches(JsonLines &output)
    : lines(output)
{ }

int Watches::addCreate(const QString &pattern, CreatePoint point)
{
    const auto handler = [this, number = lastNumber + 1](const QString &path, const CreatePoint &reported,
                                                         const bool &result) {
        QVariantMap object = notice("create", number, path, reported);
        object.insert(QStringLiteral("result"), result);
        lines.write(object);
    };
    return enter(Configuration()->getNotificationInterface()->registerCreateHandler(pattern, handler, point));
}

int Watches::addUpdate(const QString &pattern, UpdatePoint point)
{
    const auto handler = [this, number = lastNumber + 1](const QString &path, const UpdatePoint &reported,
                                                         const UpdateResult &result, const QVariant &oldValue,
                                                         const QVariant &newValue) {
        QVariantMap object = notice("update", number, path, reported);
        object.insert(QStringLiteral("result"), EnumJson(result));
        object.insert(QStringLiteral("old"), oldValue);
        object.insert(QStringLiteral("new"), newValue);
        lines.write(object);
    };
    return enter(Configuration()->getNotificationInterface()->registerUpdateHandler(pattern, handler, point));
}

int Watches::addDelete(const QString &pattern, DeletePoint point)
{
    const auto handler = [this, number = lastNumber + 1](const QString &path, const DeletePoint &reported,
                                                         const bool &result) {
        QVariantMap object = notice("delete", number, path, reported);
        object.insert(QStringLiteral("result"), result);
        lines.write(object);
    };
    return enter(Configuration()->getNotificationInterface()->registerDeleteHandler(pattern, handler, point));
}

bool Watches::remove(int number)
{
    return handles.remove(number) > 0;
}

void Watches::clear()
{
    handles.clear();
}

int Watches::enter(const Notification::Interfaces::NotificationInterface::HandlePointer &handle)
{
    if (!handle)
        return 0;
    handles.insert(++lastNumber, handle);
    return lastNumber;
}

} // namespace Tessellum::Tool
