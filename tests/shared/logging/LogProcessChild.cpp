#include "LogProcessChild.h"
#include "LogSegments.h"

#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>

#include <QCoreApplication>
#include <QHash>
#include <QLoggingCategory>
#include <QSemaphore>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <support/Literals.h>
#include <unistd.h>

using namespace Shared::Logging;

namespace {

void Say(const QString &text)
{
    std::fprintf(stdout, "%s\n", qPrintable(text));
    std::fflush(stdout);
}

QString SaySink()
{
    return LogHandler::RegisterMessageSink(
        [](const LogMessageContext &context, const LogLevel &level, const QString &message) {
            Say("%1/%2/%3"_s.arg(context.category, QString(level), message));
        });
}

/*! Uses the log after it was closed: it is older than all other static objects. */
struct LateUser
{
    ~LateUser()
    {
        if (!armed)
            return;
        FrameworkLog().critical() << "too late";
        LogHandler::SetLogLevel(LogMessageType::fatal);
        qCritical("too late for Qt's messages");
        const bool silent = LogHandler::RegisterMessageSink([](auto &...) {}).isNull()
            && !LogHandler::UnregisterMessageSink(QString()) && !LogHandler::IsEnabled(LogMessageType::fatal);
        std::fputs(silent ? "closed\n" : "open\n", stdout);
        std::fflush(stdout);
    }
    bool armed = false;
};
__attribute__((init_priority(101))) LateUser lateUser;

/*! Uses the log while static objects are destroyed, before it is closed. */
struct ExitUser
{
    ~ExitUser() { FrameworkLog().warning() << "at exit"; }
};

int Lines()
{
    FrameworkLog().debug() << "debug";
    FrameworkLog().log() << "text \u00e4"_s;
    LogHandler::LogMessage(LogMessageContext(), LogMessageType::warning, "bare"_s);
    LogHandler::SetLogIdentification("core"_s);
    LogHandler::SetLogIdentification("other"_s);
    LogHandler::LogMessage(LogMessageContext(), LogMessageType::warning, "named"_s);
    return SaySink().isNull();
}

int Fatal()
{
    for (int count = 0; count < 2; ++count)
        SaySink();
    FrameworkLog().fatal() << "fatal text";
    Say("still there"_s);
    return 0;
}

int QtMessages()
{
    SaySink();
    qDebug("a debug message");
    qInfo("an info message");
    qWarning("a warning");
    qCritical("a critical message");
    return 0;
}

int OwnQtHandler()
{
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { Say("own: "_s + text); });
    SaySink();
    qWarning("a warning");
    return 0;
}

int Exit()
{
    // At its first message Qt reads its rules, also from resources, which are gone when the last object ends.
    QLoggingCategory::defaultCategory();
    static const ExitUser exitUser;
    lateUser.armed = true;
    SaySink();
    FrameworkLog().log() << "in time";
    return 0;
}

int ExitInsideAFilter()
{
    LogHandler::RegisterMessageFilter([](auto &...) -> bool { std::exit(7); });
    FrameworkLog().log() << "text";
    return 0;
}

int FatalInsideAFilter()
{
    SaySink();
    LogHandler::RegisterMessageFilter([](auto &...) {
        FrameworkLog().fatal() << "from a filter";
        return true;
    });
    FrameworkLog().log() << "text";
    Say("still there"_s);
    return 0;
}

int HangInside()
{
    LogHandler::RegisterMessageFilter([](auto &...) {
        Say("inside"_s);
        QSemaphore().acquire();
        return true;
    });
    FrameworkLog().log() << "text";
    return 0;
}

int WaitAndLog()
{
    SaySink();
    Say("ready"_s);
    std::getchar();
    FrameworkLog().log() << "after the wait";
    return 0;
}

int OtherUser()
{
    constexpr uid_t nobody = 65534;
    if (setuid(nobody) != 0)
        return 3;
    if (SaySink().isNull())
        return 4;
    FrameworkLog().log() << "text";
    return 0;
}

int ClosedPipe()
{
    int ends[2];
    if (pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
        return 3;
    close(ends[0]);
    close(ends[1]);
    std::signal(SIGPIPE, SIG_DFL);
    FrameworkLog().log() << "text";
    Say("alive"_s);
    return 0;
}

int ManyLines()
{
    for (int count = 0; count < 100; ++count)
        FrameworkLog().log() << "line";
    return 0;
}

int NoUse()
{
    for (const QString &key : LogSegments::segmentKeys) {
        if (LogSegments::Exists(key))
            return 3;
    }
    return 0;
}

/*! The records name this very process, and something that is no object of the log. */
int StaleRecords(quint64 address)
{
    LogSegments::Segment sink(LogSegments::sinkKey);
    LogSegments::Segment filter(LogSegments::filterKey);
    LogSegments::Segment context(LogSegments::contextKey);
    for (LogSegments::Segment *segment : {&sink, &filter, &context})
        segment->write({QCoreApplication::applicationPid(), address});
    SaySink();
    FrameworkLog().log() << "text";
    return sink.read().address == address || filter.read().address == address
        || context.read().address == address;
}

/*!
 * What a dead process with the same number had there: all is right but the time at which that process began.
 */
int RecordsOfADeadNamesake()
{
    static utils::SharedLogObject<utils::SharedSettings> dead(
        LogContext(LogMessageType::fatal, LogMessageType::fatal));
    --dead.mark.processStart;
    return StaleRecords(reinterpret_cast<quintptr>(&dead));
}

/*! An object of this process, but of another kind. */
int RecordsOfAnotherKind()
{
    static utils::SharedLogObject<LogFilterRepository> filters;
    LogSegments::Segment segment(LogSegments::contextKey);
    segment.write({QCoreApplication::applicationPid(), reinterpret_cast<quintptr>(&filters)});
    FrameworkLog().log() << "text";
    return segment.read().address == reinterpret_cast<quintptr>(&filters);
}

/*! Without the segments there are lines, but no sinks. */
int SmallSegments()
{
    QSharedMemory sink(LogSegments::sinkKey);
    QSharedMemory context(LogSegments::contextKey);
    if (!sink.create(8) || !context.create(8))
        return 3;
    if (!SaySink().isNull() || LogHandler::Instance()->setLogLevel(LogMessageType::fatal))
        return 4;
    FrameworkLog().log() << "text";
    return 0;
}

} // namespace

int RunLogProcessChild(const QString &scenario)
{
    const QHash<QString, std::function<int()>> scenarios{
        {"lines"_s, Lines},
        {"fatal"_s, Fatal},
        {"qt messages"_s, QtMessages},
        {"own qt handler"_s, OwnQtHandler},
        {"exit"_s, Exit},
        {"exit inside a filter"_s, ExitInsideAFilter},
        {"fatal inside a filter"_s, FatalInsideAFilter},
        {"hang inside"_s, HangInside},
        {"wait and log"_s, WaitAndLog},
        {"other user"_s, OtherUser},
        {"closed pipe"_s, ClosedPipe},
        {"many lines"_s, ManyLines},
        {"no use"_s, NoUse},
        {"unmapped records"_s, [] { return StaleRecords(64); }},
        {"misaligned records"_s, [] { return StaleRecords(65); }},
        {"records of a dead namesake"_s, RecordsOfADeadNamesake},
        {"records of another kind"_s, RecordsOfAnotherKind},
        {"small segments"_s, SmallSegments},
    };
    return scenarios.value(scenario)();
}
