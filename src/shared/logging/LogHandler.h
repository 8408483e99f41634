#pragma once

#include <shared/logging/LogContext.h>
#include <shared/logging/LogFilterRepository.h>
#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContext.h>
#include <shared/logging/LogSinkRepository.h>
#include <shared/logging/utils/LogLock.h>
#include <shared/logging/utils/LogSegment.h>
#include <shared/logging/utils/SharedLogObject.h>
#include <shared/TessellumExport.h>

#include <QObject>
#include <QString>

namespace Shared::Logging {

/*!
 * The one place through which every message of the process goes: it formats a line for the debug output,
 * hands the raw message to the sinks and ends the process after a fatal one. It takes over Qt's messages as
 * well, unless the application has a Qt message handler of its own.
 *
 * Each copy of this code in a process has a handler of its own, yet all of them find the same sinks, filters
 * and settings through named shared memory. The handler is made at first use, closed at the end of the
 * process and its memory never freed. Once it is closed the static functions do nothing.
 *
 * All static functions may be called by any thread, none reports a failure of the log machinery. Sinks run on
 * the thread that logs, with nothing locked: they may log, and may still be called once after they were
 * unregistered. Filters run inside the section described below: what they log goes to the debug output alone,
 * where a fatal message ends the process at once.
 *
 * Locks, in their order: the section (see LogLock), which is a mutex of this copy and then the machine-wide
 * semaphore, keeps lines and changes of all processes apart. The mutex of each shared object guards that
 * object against the other copies of this process, since the semaphore is made anew by the system when its
 * maker ends and then lets two in; it is held for a copy or a change alone, never while a callback runs.
 * Below the threshold nothing is locked: the threshold is read atomically.
 */
class TESSELLUM_EXPORT LogHandler : public QObject
{
    Q_OBJECT
public:
    /*! Sends a finished message on its way; aborts the process after a fatal one. */
    static void LogMessage(const LogMessageContext &context, const LogLevel &level, const QString &message);
    /*! Whether a message of this level would go anywhere now. */
    static bool IsEnabled(const LogLevel &level);

    static void SetLogLevel(const LogMessageType &level);
    static void SetEventLogLevel(const LogMessageType &level);
    /*! The first identification that is set in a process stays. */
    static void SetLogIdentification(const QString &identification);

    /*! A handle for UnregisterMessageSink(), null for an empty sink or on failure. */
    static QString RegisterMessageSink(const LogSink &sink);
    static bool UnregisterMessageSink(const QString &handle);
    /*!
     * A handle for UnregisterMessageFilter(), null for an empty filter or on failure. With filters, a line
     * goes to the debug output if one of them returns true; a filter that throws has said false.
     */
    static QString RegisterMessageFilter(const LogFilter &filter);
    static bool UnregisterMessageFilter(const QString &handle);

    /*! This copy's handler, which is made here at first use. Null once it is closed. */
    static LogHandler *Instance();
    /*!
     * Makes the hook that closes the log at the end of the process, unless it is there already. An exit hook
     * whose constructor calls this runs while the log still works.
     */
    static void PrepareExit();

    LogHandler(const LogLevel &logLevel, const LogLevel &eventLogLevel);

    Q_INVOKABLE void onCustomLogMessage(const Shared::Logging::LogMessageContext &context,
                                        const Shared::Logging::LogLevel &level, const QString &message);

    QString addCustomSink(const LogSink &sink);
    bool removeCustomSink(const QString &handle);
    QString addCustomFilter(const LogFilter &filter);
    bool removeCustomFilter(const QString &handle);
    /*! These three return true when settings shared by the whole process were reached. */
    bool setLogLevel(const LogMessageType &level);
    bool setEventLogLevel(const LogMessageType &level);
    bool setLogIdentifier(const QString &identification);

    /*! The settings in effect. */
    LogContext getContext() const;
    LogLevel getLogLevel() const { return threshold(); }

protected:
    /*! The identification in effect. */
    virtual QString getId() const;

private:
    using Section = utils::LogLock::Section;
    using Settings = utils::SharedLogObject<utils::SharedSettings>;
    struct ExitHook;

    void joinOtherCopies();
    void useSettings(Settings *shared);
    void initializeLogSinkRepository();
    void initializeLogFilterRepository();
    void initializeLogContext();

    LogMessageType threshold() const;
    template <typename Change>
    bool changeSettings(const Change &change);
    void close();

    utils::LogLock lock;
    utils::LogSegment sinkSegment;
    utils::LogSegment filterSegment;
    utils::LogSegment contextSegment;
    // Set in the constructor alone; null where the segment could not be reached. Never freed.
    utils::SharedLogObject<LogSinkRepository> *sinks = nullptr;
    utils::SharedLogObject<LogFilterRepository> *filters = nullptr;
    Settings *settings = nullptr;
    LogContext ownContext; /*!< guarded by the section */
};

} // namespace Shared::Logging
