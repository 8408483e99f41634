#pragma once

#include <shared/TessellumExport.h>

#include <QMetaType>
#include <QString>
#include <QStringList>

namespace Shared::Logging {

/*! Severity of a log message. The numbers are compared and travel between modules. */
enum class LogMessageType : qint32 { verbose = 0, debug = 1, log = 2, warning = 3, critical = 4, fatal = 5 };

/*! A severity together with its text form. A value without a lock of its own. */
class TESSELLUM_EXPORT LogLevel
{
public:
    /*! The default is LogMessageType::log. */
    LogLevel() = default;
    LogLevel(LogMessageType type)
        : level(type)
    { }
    /*! Debug, warning and fatal keep their meaning. Qt's critical arrives as log, its info as verbose. */
    LogLevel(QtMsgType type);
    LogLevel(const LogLevel &) = default;
    LogLevel &operator=(const LogLevel &) = default;
    LogLevel &operator=(LogMessageType type)
    {
        level = type;
        return *this;
    }

    LogMessageType getLogLevel() const { return level; }
    operator LogMessageType() const { return level; }
    /*! The text form, "UNKNOWN" for a number outside the enumeration. */
    operator QString() const;

    /*! The six text forms in the order of their numbers. */
    static QStringList GetLogLevelStrings();
    /*! The level of a text in any case; LogMessageType::log for every other text. */
    static LogLevel ConvertStringToLogLevel(const QString &text);

private:
    LogMessageType level = LogMessageType::log;
};

} // namespace Shared::Logging

Q_DECLARE_METATYPE(Shared::Logging::LogMessageType)
Q_DECLARE_METATYPE(Shared::Logging::LogLevel)
