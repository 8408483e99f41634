#pragma once

#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContext.h>
#include <shared/TessellumExport.h>

#include <QHash>
#include <QList>

#include <functional>

namespace Shared::Logging {

/*!
 * Gets the context, the level, the raw message and the formatted line; true is a vote for the debug output.
 */
using LogFilter
    = std::function<bool(const LogMessageContext &, const LogLevel &, const QString &, const QString &)>;

/*! The registered filters. Has no lock of its own: LogHandler guards it. */
class TESSELLUM_EXPORT LogFilterRepository
{
public:
    virtual ~LogFilterRepository() = default;
    LogFilterRepository() = default;
    LogFilterRepository(const LogFilterRepository &) = default;
    LogFilterRepository &operator=(const LogFilterRepository &) = default;

    /*! A fresh handle, null for an empty callback, which is not stored. */
    QString addCustomFilter(const LogFilter &callback);
    /*! False for an unknown handle. */
    bool removeCustomFilter(const QString &handle);
    /*! In no particular order. */
    QList<LogFilter> getMessageFilter() const { return callbacks.values(); }

private:
    QHash<QString, LogFilter> callbacks;
};

} // namespace Shared::Logging
