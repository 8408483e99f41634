#include <shared/logging/LogLevel.h>

#include <array>

namespace Shared::Logging {

namespace {

// Plain characters: a message is written until the very end of the process, after static objects have gone.
constexpr std::array<const char *, 6> levelNames
    = {"VERBOSE", "DEBUG", "LOG", "WARNING", "CRITICAL", "FATAL"};

LogMessageType FromQtType(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return LogMessageType::debug;
    case QtWarningMsg:
        return LogMessageType::warning;
    case QtCriticalMsg: // shares its number with the system message, whose level counts
        return LogMessageType::log;
    case QtFatalMsg:
        return LogMessageType::fatal;
    default:
        return LogMessageType::verbose;
    }
}

} // namespace

LogLevel::LogLevel(QtMsgType type)
    : level(FromQtType(type))
{ }

LogLevel::operator QString() const
{
    const auto number = static_cast<quint32>(level);
    return QLatin1String(number < levelNames.size() ? levelNames[number] : "UNKNOWN");
}

QStringList LogLevel::GetLogLevelStrings()
{
    QStringList names;
    for (const char *name : levelNames)
        names.append(QLatin1String(name));
    return names;
}

LogLevel LogLevel::ConvertStringToLogLevel(const QString &text)
{
    for (std::size_t number = 0; number < levelNames.size(); ++number) {
        if (text.compare(QLatin1String(levelNames[number]), Qt::CaseInsensitive) == 0)
            return static_cast<LogMessageType>(number);
    }
    return LogMessageType::log;
}

} // namespace Shared::Logging
