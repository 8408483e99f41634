#pragma once

#include <notification/Examiner.h>
#include <notification/utils/WildcardIndex.h>

#include <QMap>

#include <array>
#include <atomic>
#include <functional>
#include <memory>

namespace Tessellum::Notification {

/*!
 * The table of handlers by path and point; \a Point is one of the three kinds.
 *
 * An examiner is shared by the handlers of the same path and the same point. Any thread may call. Lock:
 * guards the tables, is taken before that of an examiner and held while no handler, sink or destructor runs;
 * no operation calls another one with it held.
 */
template <class Point>
class TESSELLUM_EXPORT ExaminerRegistration
{
public:
    using PointMatcher = std::function<bool(const Point &, const Point &)>;
    using Examiners = QList<std::shared_ptr<Examiner>>;

    /*! \a pointMatches tells which points of registrations a point of a task meets; it must not call back. */
    explicit ExaminerRegistration(PointMatcher pointMatches = PointMatches<Point>);
    ~ExaminerRegistration();
    Q_DISABLE_COPY(ExaminerRegistration)

    /*! Enters the handler of \a handle for the path of the handle; 1, or 0 if the handle has gone. */
    int registerEventHandler(const std::shared_ptr<utils::WrappedNotificationHandle> &handle,
                             const Point &point);
    /*! Ends the registrations of a handle and invalidates it, without waiting; false if there are none. */
    bool unregisterEventHandler(const QString &uuid);
    /*!
     * The examiners of \a path and \a point. Mode 1, for a running task: those of the very path, then those
     * of wildcard paths that match, each in ascending order of path and point. Mode 2: \a path as it was
     * registered.
     */
    Examiners getExaminers(const QString &path, const Point &point, int mode);
    /*! True if nothing is registered: what asks on behalf of a task can end there. Costs no lock. */
    bool isEmpty() const { return size.load(std::memory_order_acquire) == 0; }
    /*! False if no registration of any path meets \a point. Costs no lock. */
    bool hears(const Point &point) const
    {
        const auto number = size_t(point);
        return number >= hearers.size() || hearers[number].load(std::memory_order_acquire) > 0;
    }

private:
    struct Registration
    {
        std::shared_ptr<Examiner> examiner;
        QString path;
        Point point;
    };
    using PathTable = QHash<QString, QMap<Point, std::weak_ptr<Examiner>>>;
    using Stale = QList<QPair<QString, Point>>;

    void enterLocked(const QString &path, const Point &point, const std::shared_ptr<Examiner> &examiner);
    void removeLocked(const QString &path, const Point &point);
    std::shared_ptr<Examiner> findLocked(const QString &path, const Point &point) const;
    void collectLocked(const PathTable &table, const QString &path, const Point &point, Examiners &found,
                       Stale &stale) const;
    void removeExpired(const Stale &stale);
    void countHearersLocked(const Point &registered, int difference);

    const PointMatcher pointMatches;
    mutable QReadWriteLock lock;
    QMultiHash<QString, Registration> byHandle;
    PathTable exactPaths;
    PathTable wildcardPaths;
    utils::WildcardIndex wildcards; // the keys of wildcardPaths
    std::atomic<int> size = 0;
    std::array<std::atomic<int>, size_t(AllPoint<Point>) + 1>
        hearers{}; // registrations that meet a point, by its number
};

extern template class ExaminerRegistration<CreatePoint>;
extern template class ExaminerRegistration<UpdatePoint>;
extern template class ExaminerRegistration<DeletePoint>;

} // namespace Tessellum::Notification
