#include "Series.h"

#include <algorithm>
#include <limits>
#include <numeric>

using namespace Tessellum::AppData;

namespace {

constexpr int sparklineWidth = 32;

double mean(const QVector<Series::Point> &points, int first, int last)
{
    const double sum
        = std::accumulate(points.cbegin() + first, points.cbegin() + last, 0.0,
                          [](double total, const Series::Point &point) { return total + point.value; });
    return sum / (last - first);
}

bool isLower(const Series::Point &left, const Series::Point &right)
{
    return left.value < right.value;
}

} // namespace

Series Series::Read(const Interfaces::DataEntryInterface &entry, quint64 first)
{
    Series series;
    series.name = entry.getName();
    const auto entryQuery = entry.getQueryInterface();
    if (!entryQuery) // what a mirror shows can go at any time
        return series;
    const auto elements = entryQuery->getElementsInRange(
        first, std::numeric_limits<quint64>::max(), ActivationMask::All, Interfaces::PassThroughFilter());
    for (const auto &element : elements) {
        const auto query = element->getQueryInterface();
        const auto value = query ? query->getParsedData() : nullptr;
        if (value && value->isValid()) // not that of an element which has gone meanwhile
            series.points.append({query->getTimestamp(), value->toDouble()});
    }
    std::stable_sort(series.points.begin(), series.points.end(),
                     [](const Point &left, const Point &right) { return left.timestamp < right.timestamp; });
    return series;
}

void Series::print(QTextStream &out) const
{
    out << "  " << name.leftJustified(22);
    if (points.isEmpty()) {
        out << "empty" << Qt::endl;
        return;
    }
    const auto extremes = std::minmax_element(points.cbegin(), points.cend(), isLower);
    const double seconds
        = static_cast<double>(points.constLast().timestamp - points.constFirst().timestamp) / 1000.0;
    out << QStringLiteral("%1 values in %2 s  min %3  mean %4  max %5  ")
               .arg(points.size(), 5)
               .arg(seconds, 6, 'f', 1)
               .arg(extremes.first->value, 9, 'f', 2)
               .arg(mean(points, 0, points.size()), 9, 'f', 2)
               .arg(extremes.second->value, 9, 'f', 2)
        << Sparkline(points, sparklineWidth) << Qt::endl;
}

QString Sparkline(const QVector<Series::Point> &points, int width)
{
    constexpr ushort lowestBlock = 0x2581;
    constexpr int heights = 8;
    if (points.isEmpty())
        return {};
    const int columns = std::min(width, points.size());
    QVector<double> means;
    for (int column = 0; column < columns; ++column) {
        means.append(mean(points, column * points.size() / columns, (column + 1) * points.size() / columns));
    }
    const auto extremes = std::minmax_element(means.cbegin(), means.cend());
    const double lowest = *extremes.first;
    const double range = *extremes.second - lowest;
    QString line;
    for (const double value : qAsConst(means)) {
        const int height = range > 0 ? static_cast<int>((value - lowest) / range * (heights - 1) + 0.5) : 0;
        line.append(QChar(static_cast<ushort>(lowestBlock + height)));
    }
    return line;
}
