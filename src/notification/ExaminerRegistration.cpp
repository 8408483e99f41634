#include "ExaminerRegistration.h"

#include <shared/foundation/StringHelpers.h>

#include <utility>

namespace Tessellum::Notification {

namespace {

constexpr int ExactSearch = 2;

} // namespace

template <class Point>
ExaminerRegistration<Point>::ExaminerRegistration(PointMatcher matches)
    : pointMatches(std::move(matches))
{ }

template <class Point>
ExaminerRegistration<Point>::~ExaminerRegistration() = default;

template <class Point>
int ExaminerRegistration<Point>::registerEventHandler(
    const std::shared_ptr<utils::WrappedNotificationHandle> &handle, const Point &point)
{
    const auto inner = handle ? handle->getHandle() : nullptr;
    if (!inner)
        return 0;
    const QString path = inner->getPath();

    const QWriteLocker locker(&lock);
    std::shared_ptr<Examiner> examiner = findLocked(path, point);
    if (!examiner)
        examiner = std::make_shared<Examiner>();
    if (!examiner->addConnection(handle))
        return 0;
    byHandle.insert(inner->getUuid(), {examiner, path, point});
    enterLocked(path, point, examiner);
    size.store(byHandle.size(), std::memory_order_release);
    countHearersLocked(point, 1);
    return 1;
}

template <class Point>
bool ExaminerRegistration<Point>::unregisterEventHandler(const QString &uuid)
{
    QList<Registration> registrations;
    QList<std::shared_ptr<ExaminerConnection>>
        connections; // these end behind the lock, with a line in the log
    bool allRemoved = true;
    {
        const QWriteLocker locker(&lock);
        registrations = byHandle.values(uuid);
        byHandle.remove(uuid);
        for (const Registration &registration : qAsConst(registrations)) {
            countHearersLocked(registration.point, -1);
            connections.append(registration.examiner->takeConnection(uuid));
            allRemoved = allRemoved && connections.last();
            if (registration.examiner->isEmpty())
                removeLocked(registration.path, registration.point);
        }
        size.store(byHandle.size(), std::memory_order_release);
    }
    for (const auto &connection : qAsConst(connections)) {
        const auto handle = connection ? connection->getHandle() : nullptr;
        if (handle)
            handle->invalidateWithoutWaiting();
    }
    return allRemoved && !registrations.isEmpty();
}

template <class Point>
typename ExaminerRegistration<Point>::Examiners
ExaminerRegistration<Point>::getExaminers(const QString &path, const Point &point, int mode)
{
    Examiners found;
    Stale stale;
    if (isEmpty())
        return found;
    {
        const QReadLocker locker(&lock);
        collectLocked(exactPaths, path, point, found, stale);
        if (mode == ExactSearch) {
            collectLocked(wildcardPaths, path, point, found, stale);
        } else {
            const QStringList patterns = wildcards.findMatching(path);
            for (const QString &pattern : patterns)
                collectLocked(wildcardPaths, pattern, point, found, stale);
        }
    }
    if (!stale.isEmpty())
        removeExpired(stale);
    return found;
}

template <class Point>
void ExaminerRegistration<Point>::collectLocked(const PathTable &table, const QString &path,
                                                const Point &point, Examiners &found, Stale &stale) const
{
    const auto points = table.constFind(path);
    if (points == table.cend())
        return;
    for (auto entry = points->cbegin(); entry != points->cend(); ++entry) {
        if (!pointMatches(entry.key(), point))
            continue;
        if (const auto examiner = entry->lock())
            found.append(examiner);
        else
            stale.append({points.key(), entry.key()});
    }
}

template <class Point>
std::shared_ptr<Examiner> ExaminerRegistration<Point>::findLocked(const QString &path,
                                                                  const Point &point) const
{
    const PathTable &table = Shared::IsWildcardString(path) ? wildcardPaths : exactPaths;
    return table.value(path).value(point).lock();
}

template <class Point>
void ExaminerRegistration<Point>::enterLocked(const QString &path, const Point &point,
                                              const std::shared_ptr<Examiner> &examiner)
{
    const bool isWildcard = Shared::IsWildcardString(path);
    auto &points = (isWildcard ? wildcardPaths : exactPaths)[path];
    if (isWildcard && points.isEmpty())
        wildcards.add(path);
    points.insert(point, examiner);
}

template <class Point>
void ExaminerRegistration<Point>::removeLocked(const QString &path, const Point &point)
{
    const bool isWildcard = Shared::IsWildcardString(path);
    PathTable &table = isWildcard ? wildcardPaths : exactPaths;
    const auto points = table.find(path);
    if (points == table.end() || points->remove(point) == 0 || !points->isEmpty())
        return;
    table.erase(points);
    if (isWildcard)
        wildcards.remove(path);
}

template <class Point>
void ExaminerRegistration<Point>::removeExpired(const Stale &stale)
{
    const QWriteLocker locker(&lock);
    for (const auto &[path, point] : stale) {
        if (!findLocked(path, point)) // somebody may have registered there meanwhile
            removeLocked(path, point);
    }
}

template <class Point>
void ExaminerRegistration<Point>::countHearersLocked(const Point &registered, int difference)
{
    for (size_t number = 0; number < hearers.size(); ++number) {
        if (pointMatches(registered, Point(number)))
            hearers[number].fetch_add(difference, std::memory_order_acq_rel);
    }
}

template class ExaminerRegistration<CreatePoint>;
template class ExaminerRegistration<UpdatePoint>;
template class ExaminerRegistration<DeletePoint>;

} // namespace Tessellum::Notification
