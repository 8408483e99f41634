#include <shared/conversion/TimeStringConversion.h>
#include <shared/logging/FrameworkLog.h>

#include <QStringList>

namespace Shared::Conversion {

namespace {

const QMap<QString, double> &SecondsPerUnit()
{
    static const auto *const table = new QMap<QString, double>{
        {QStringLiteral("a"), 31557600.0},
        {QStringLiteral("d"), 86400.0},
        {QStringLiteral("h"), 3600.0},
        {QStringLiteral("m"), 60.0},
        {QStringLiteral("s"), 1.0},
        {QStringLiteral("ms"), 0.001},
        {QStringLiteral("us"), 0.000001},
        {QStringLiteral("ns"), 0.000000001},
        {QStringLiteral("ps"), 0.000000000001},
    };
    return *table;
}

} // namespace

const QMap<QString, int> &DateFormatNames()
{
    static const auto *const names = new QMap<QString, int>{
        {QStringLiteral("text"), 1},
        {QStringLiteral("iso"), 2},
        {QStringLiteral("systemlocaleshort"), 3},
        {QStringLiteral("systemlocalelong"), 4},
        {QStringLiteral("defaultlocaleshort"), 5},
        {QStringLiteral("defaultlocalelong"), 6},
        {QStringLiteral("rfc2822"), 7},
        {QStringLiteral("duration"), 8},
    };
    return *names;
}

TimeStringConversion::TimeStringConversion(const QString &text)
    : expression(QStringLiteral("^(\\d+\\.?\\d*)(?:\\s*)(%1)?$")
                     .arg(QStringList(SecondsPerUnit().keys()).join(QLatin1Char('|'))))
{
    parseTimeString(text);
}

bool TimeStringConversion::parseTimeString(const QString &text)
{
    valid = false;
    if (expression.indexIn(text) < 0 || expression.captureCount() != 2) {
        Logging::FrameworkLog().warning()
            << "TimeStringConversion::parseTimeString() can not parse the provided duration=" << text;
        return false;
    }
    // The expression also takes the digits of other scripts, which toDouble() refuses.
    const double number = expression.cap(1).toDouble(&valid);
    if (!valid) {
        Logging::FrameworkLog().warning()
            << "TimeStringConversion::parseTimeString() can not convert the provided duration value=" << text;
        return false;
    }
    const QString unit = expression.cap(2);
    seconds = number * SecondsPerUnit().value(unit.isEmpty() ? QStringLiteral("s") : unit);
    return true;
}

double TimeStringConversion::convertParsedSecondsToUnit(const QString &unit) const
{
    return valid ? seconds / SecondsPerUnit().value(unit, 1.0) : 0.0;
}

double TimeStringConversion::toYears() const
{
    return convertParsedSecondsToUnit(QStringLiteral("a"));
}

double TimeStringConversion::toDays() const
{
    return convertParsedSecondsToUnit(QStringLiteral("d"));
}

double TimeStringConversion::toHours() const
{
    return convertParsedSecondsToUnit(QStringLiteral("h"));
}

double TimeStringConversion::toMinutes() const
{
    return convertParsedSecondsToUnit(QStringLiteral("m"));
}

double TimeStringConversion::toSeconds() const
{
    return convertParsedSecondsToUnit(QStringLiteral("s"));
}

double TimeStringConversion::toMilliSeconds() const
{
    return convertParsedSecondsToUnit(QStringLiteral("ms"));
}

double TimeStringConversion::toMicroSeconds() const
{
    return convertParsedSecondsToUnit(QStringLiteral("us"));
}

double TimeStringConversion::toNanoSeconds() const
{
    return convertParsedSecondsToUnit(QStringLiteral("ns"));
}

double TimeStringConversion::toPicoSeconds() const
{
    return convertParsedSecondsToUnit(QStringLiteral("ps"));
}

} // namespace Shared::Conversion
