#pragma once

#include <shared/TessellumExport.h>

#include <QFlags>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace Shared::Logging {

/*!
 * Where a message comes from and what travels with it to sinks and filters. A value without a lock of its
 * own.
 */
struct TESSELLUM_EXPORT LogMessageContext
{
    enum LogMessageFlag {
        LogStackTrace = 1 /*!< asks for a stack trace in the formatted line */
    };
    Q_DECLARE_FLAGS(LogMessageFlags, LogMessageFlag)

    LogMessageContext() = default;
    /*!
     * file and function may be empty and line -1 where the position is of no interest;
     * category is the word that appears in the log line.
     */
    LogMessageContext(const QString &file, qint32 line, const QString &function, const QString &category,
                      const QList<QVariant> &parameters, LogMessageFlags flags);
    LogMessageContext(const LogMessageContext &) = default;
    LogMessageContext &operator=(const LogMessageContext &) = default;
    virtual ~LogMessageContext() = default;

    virtual QList<QVariant> messageParameter() const { return parameters; }

    /*! True when the source position was known at construction. */
    bool isValid() const { return !invalid; }

    bool invalid = true; /*!< file or function was empty at construction */
    QString file;
    qint32 line = -1;
    QString function;
    QString category;
    QList<QVariant> parameters;
    LogMessageFlags flags;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(LogMessageContext::LogMessageFlags)

} // namespace Shared::Logging

Q_DECLARE_METATYPE(Shared::Logging::LogMessageContext)
Q_DECLARE_METATYPE(Shared::Logging::LogMessageContext::LogMessageFlags)
