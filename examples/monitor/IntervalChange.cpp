#include "IntervalChange.h"

#include <algorithm>
#include <cstdlib>

namespace {

const char *const settingName = "interval_ms";

/*! The distance in milliseconds that is the middle one of \a points; 0 where these are too few to tell. */
qint64 usualDistance(const QVector<Series::Point> &points)
{
    constexpr int fewest = 4;
    QVector<qint64> distances;
    for (int i = 1; i < points.size(); ++i)
        distances.append(static_cast<qint64>(points.at(i).timestamp - points.at(i - 1).timestamp));
    if (distances.size() < fewest)
        return 0;
    const auto middle = distances.begin() + distances.size() / 2;
    std::nth_element(distances.begin(), middle, distances.end());
    return *middle;
}

/*! The values from \a first on of the series that has the most: some leave a sample out now and then. */
QVector<Series::Point> newPoints(const Mirror &mirror, quint64 first)
{
    QVector<Series::Point> most;
    for (const QString &name : mirror.seriesNames()) {
        const auto series = mirror.series(name);
        const auto points = series ? Series::Read(*series, first).points : QVector<Series::Point>();
        if (points.size() > most.size())
            most = points;
    }
    return most;
}

} // namespace

IntervalChange::IntervalChange(int intervalMs)
    : wanted(intervalMs)
{ }

void IntervalChange::ask(Mirror &mirror, Screen &screen)
{
    const QVariant present = mirror.setting(settingName);
    const auto points = newPoints(mirror, 0);
    before = present.toInt();
    newest = points.isEmpty() ? 0 : points.last().timestamp;
    asked = true;
    QVariant value(wanted);
    value.convert(present.userType()); // what is mirrored keeps its type
    mirror.set(settingName, value);
    screen.tell(
        QStringLiteral("asked the recorder for a value each %1 ms instead of %2").arg(wanted).arg(before));
}

void IntervalChange::look(const Mirror &mirror, Screen &screen)
{
    if (!asked || confirmed)
        return;
    const int shown = mirror.setting(settingName).toInt();
    if (shown != wanted && !refused) {
        refused = true;
        screen.tell(QStringLiteral("the recorder refused that and keeps to %1 ms").arg(shown));
    }
    if (shown == wanted && keepsDistance(mirror)) {
        confirmed = true;
        screen.tell(QStringLiteral("the recorder follows: a value each %1 ms").arg(wanted));
    }
}

bool IntervalChange::keepsDistance(const Mirror &mirror) const
{
    const qint64 distance = usualDistance(newPoints(mirror, newest + 1));
    return distance > 0 && std::llabs(distance - wanted) <= std::llabs(distance - before);
}
