#include <appdata/memory_strategy/TimeRangePoint.h>

#include <QHash>
#include <QJsonValue>

#include <cmath>
#include <limits>

namespace Tessellum::AppData::MemoryStrategies {

namespace {

using Type = TimeRangePoint::Type;

bool ParseValue(const QJsonValue &json, quint64 &value)
{
    constexpr double TwoTo64 = 18446744073709551616.0;
    const double number = json.toDouble(-1);
    if (!std::isfinite(number) || number < 0)
        return false;
    value = number >= TwoTo64 ? std::numeric_limits<quint64>::max() : quint64(number);
    return true;
}

/*! None for an unknown text and for what is no text. */
Type ParseType(const QJsonValue &json)
{
    static const QHash<QString, Type> types{{QStringLiteral("absolute"), Type::Absolute},
                                            {QStringLiteral("relative_to_start"), Type::RelativeToStart},
                                            {QStringLiteral("relative_from_end"), Type::RelativeFromEnd},
                                            {QStringLiteral("relative_to_from"), Type::RelativeToFrom},
                                            {QStringLiteral("relative_from_to"), Type::RelativeFromTo}};
    if (json.isUndefined())
        return Type::Absolute;
    return types.value(json.toString().toLower(), Type::None);
}

} // namespace

bool TimeRangePoint::parse(const QJsonObject &object)
{
    quint64 parsedValue = 0;
    Type parsedType = Type::None;
    if (!object.isEmpty()) {
        if (!ParseValue(object.value(QLatin1String("value")), parsedValue))
            return false;
        parsedType = ParseType(object.value(QLatin1String("type")));
        const Type foreign = id == QLatin1String("to") ? Type::RelativeFromTo : Type::RelativeToFrom;
        if (parsedType == Type::None || parsedType == foreign)
            return false;
    }
    value = parsedValue;
    type = parsedType;
    return true;
}

} // namespace Tessellum::AppData::MemoryStrategies
