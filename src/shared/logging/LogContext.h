#pragma once

#include <shared/logging/LogLevel.h>
#include <shared/TessellumExport.h>

#include <QString>

namespace Shared::Logging {

/*! Settings of the log handler. */
struct TESSELLUM_EXPORT LogContext
{
    /*! maxLevelNameLength is computed from the level names. */
    LogContext(const LogLevel &threshold, const LogLevel &eventThreshold);

    LogLevel logLevel; /*!< messages below it go nowhere */
    LogLevel eventLogLevel; /*!< for code outside that posts LogMessageEvent */
    qint32 maxLevelNameLength; /*!< length of the longest level name */
    QString identification; /*!< stands in a line whose message has no category */
};

} // namespace Shared::Logging
