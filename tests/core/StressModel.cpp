#include "core/StressModel.h"

#include <shared/foundation/StringHelpers.h>

#include <support/Literals.h>

namespace {

QString keyOf(const QString &path, int point, qlonglong value)
{
    return "%1|%2|%3"_s.arg(path).arg(point).arg(value);
}

/*! What \a handler heard, as counts by key; creates and deletes of one path can come several times. */
QHash<QString, int> countHeard(StressHandler &handler, QString &difference)
{
    QHash<QString, int> counts;
    for (const StressHandler::Heard &heard : handler.takeHeard()) {
        if (!handler.wants(heard.point))
            difference = "heard of point %1 at %2, registered for %3"_s.arg(heard.point)
                             .arg(heard.path)
                             .arg(handler.point);
        const int count = ++counts[keyOf(heard.path, heard.point, heard.value)];
        const bool tellsOthers = heard.path.startsWith("stress.shared."_s)
            && heard.point == static_cast<int>(Tessellum::Notification::UpdatePoint::Done);
        if (handler.kind == StressKind::Update && count > 1 && !tellsOthers)
            difference = "heard twice of value %1 at %2"_s.arg(heard.value).arg(heard.path);
    }
    return counts;
}

} // namespace

void StressRecord::add(const StressOperation &operation)
{
    const QMutexLocker locker(&mutex);
    operations.append(operation);
}

void StressRecord::add(const std::shared_ptr<StressHandler> &handler)
{
    const QMutexLocker locker(&mutex);
    handlers.append(handler);
}

void StressRecord::forgetLastPoints(const QString &path)
{
    const QMutexLocker locker(&mutex);
    for (StressOperation &operation : operations) {
        if (operation.kind == StressKind::Update && operation.path == path)
            operation.points.removeOne(static_cast<int>(Tessellum::Notification::UpdatePoint::Done));
    }
}

void StressRecord::clear()
{
    const QMutexLocker locker(&mutex);
    operations.clear();
    handlers.clear();
}

QString StressRecord::findDifference() const
{
    const QMutexLocker locker(&mutex);
    QString difference;
    for (const std::shared_ptr<StressHandler> &handler : handlers) {
        const QHash<QString, int> counts = countHeard(*handler, difference);
        QHash<QString, int> expected;
        for (const StressOperation &operation : operations) {
            if (operation.kind != handler->kind || operation.begun < handler->registered
                || handler->endedEarly
                || !Shared::WildcardStringCompare(operation.path.constData(), handler->pattern.constData()))
                continue;
            for (const int point : operation.points) {
                if (handler->wants(point))
                    ++expected[keyOf(operation.path, point, operation.value)];
            }
        }
        for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
            if (counts.value(it.key()) < it.value())
                difference
                    = "pattern %1 point %2: %3 expected %4 times, heard %5 times"_s.arg(handler->pattern)
                          .arg(handler->point)
                          .arg(it.key())
                          .arg(it.value())
                          .arg(counts.value(it.key()));
        }
    }
    return difference;
}

int StressRecord::operationCount() const
{
    const QMutexLocker locker(&mutex);
    return operations.size();
}

int StressRecord::heardCount() const
{
    const QMutexLocker locker(&mutex);
    int count = 0;
    for (const std::shared_ptr<StressHandler> &handler : handlers)
        count += handler->takeHeard().size();
    return count;
}
