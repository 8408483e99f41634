#pragma once

#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContext.h>
#include <shared/TessellumExport.h>

#include <QHash>
#include <QList>

#include <functional>

namespace Shared::Logging {

/*! Gets the context, the level and the raw message. */
using LogSink = std::function<void(const LogMessageContext &, const LogLevel &, const QString &)>;

/*! The registered sinks. Has no lock of its own: LogHandler guards it. */
class TESSELLUM_EXPORT LogSinkRepository
{
public:
    virtual ~LogSinkRepository() = default;
    LogSinkRepository() = default;
    LogSinkRepository(const LogSinkRepository &) = default;
    LogSinkRepository &operator=(const LogSinkRepository &) = default;

    /*! A fresh handle, null for an empty callback, which is not stored. */
    QString addCustomSink(const LogSink &callback);
    /*! False for an unknown handle. */
    bool removeCustomSink(const QString &handle);
    /*! In no particular order. */
    QList<LogSink> getMessageSinks() const { return callbacks.values(); }

private:
    QHash<QString, LogSink> callbacks;
};

} // namespace Shared::Logging
