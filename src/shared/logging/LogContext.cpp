#include <shared/logging/LogContext.h>

#include <algorithm>

namespace Shared::Logging {

namespace {

qint32 LongestLevelName()
{
    int longest = 1;
    const QStringList names = LogLevel::GetLogLevelStrings();
    for (const QString &name : names)
        longest = std::max(longest, name.size());
    return longest;
}

} // namespace

LogContext::LogContext(const LogLevel &threshold, const LogLevel &eventThreshold)
    : logLevel(threshold)
    , eventLogLevel(eventThreshold)
    , maxLevelNameLength(LongestLevelName())
{ }

} // namespace Shared::Logging
