#pragma once

#include <notification/TaskPoints.h>

#include <QString>
#include <QVariant>

#include <functional>

namespace Tessellum::Notification {

using CreateHandler = std::function<void(const QString &path, const CreatePoint &point, const bool &result)>;
using UpdateHandler
    = std::function<void(const QString &path, const UpdatePoint &point, const UpdateResult &result,
                         const QVariant &oldValue, const QVariant &newValue)>;
using DeleteHandler = std::function<void(const QString &path, const DeletePoint &point, const bool &result)>;

namespace utils {

template <class Point>
struct HandlerOfPoint;
template <>
struct HandlerOfPoint<CreatePoint>
{
    using Type = CreateHandler;
};
template <>
struct HandlerOfPoint<UpdatePoint>
{
    using Type = UpdateHandler;
};
template <>
struct HandlerOfPoint<DeletePoint>
{
    using Type = DeleteHandler;
};

} // namespace utils

/*! The type of the handlers that hear of \a Point. */
template <class Point>
using HandlerFunction = typename utils::HandlerOfPoint<Point>::Type;

} // namespace Tessellum::Notification
