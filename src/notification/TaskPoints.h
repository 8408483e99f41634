#pragma once

#include <QMetaType>
#include <QPair>

namespace Tessellum::Notification {

/*! The stages of a create task, in the order of their numbers. */
enum class CreatePoint : qint32 {
    Begin = 1, /*!< The task started; the flag says whether it can go on. */
    Done = 2, /*!< Finished; the flag is the outcome. */
    All = 3 /*!< Every point; for registrations and as a wait point that the first report reaches. */
};

/*! The stages of a delete task, in the order of their numbers. */
enum class DeletePoint : qint32 {
    Begin = 1, /*!< The task started; the flag says whether it can go on. */
    Done = 2, /*!< Finished; the flag is the outcome. */
    All = 3 /*!< Every point; for registrations and as a wait point that the first report reaches. */
};

/*! The stages of an update task, in the order of their numbers. */
enum class UpdatePoint : qint32 {
    Check = 1, /*!< The value went through validation. */
    Apply = 2, /*!< The value is about to be applied. */
    Failed = 4, /*!< Applying failed. */
    Done = 8, /*!< Finished. */
    All = 15 /*!< Every point; for registrations and as a wait point that the first report reaches. */
};

/*! What became of an update so far. The number 1 is reserved. */
enum class UpdateResult : qint32 {
    Ok = 0, /*!< No fault so far. */
    CheckFailed = 2, /*!< Validation refused the value. */
    ApplyFailed = 3, /*!< The value could not be applied. */
    NodeGone = 4 /*!< The node no longer exists. */
};

/*! The value of \a Point that stands for all points. */
template <class Point>
constexpr Point AllPoint = Point::All;

/*! True where two points meet in a registration: they are equal, or either stands for all. */
template <class Point>
bool PointMatches(const Point &left, const Point &right)
{
    return left == right || left == AllPoint<Point> || right == AllPoint<Point>;
}

/*! True if the second member of a report tells of a fault. */
inline bool IsFault(bool result)
{
    return !result;
}

/*! \overload */
inline bool IsFault(UpdateResult result)
{
    return result != UpdateResult::Ok;
}

/*!
 * True if \a report releases who waits for \a waitPoint: the point is reached or passed, every point is good
 * enough, or the report tells of a fault.
 */
template <class Point, class Outcome>
bool ReachesWaitPoint(Point waitPoint, const QPair<Point, Outcome> &report)
{
    return waitPoint == AllPoint<Point> || report.first >= waitPoint || IsFault(report.second);
}

} // namespace Tessellum::Notification

Q_DECLARE_METATYPE(Tessellum::Notification::CreatePoint)
Q_DECLARE_METATYPE(Tessellum::Notification::DeletePoint)
Q_DECLARE_METATYPE(Tessellum::Notification::UpdatePoint)
Q_DECLARE_METATYPE(Tessellum::Notification::UpdateResult)
