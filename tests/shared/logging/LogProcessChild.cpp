#include "LogProcessChild.h"
#include "LogSegments.h"

#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>

#include <QCoreApplication>
#include <QHash>
#include <QSemaphore>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
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
            Say(QStringLiteral("%1/%2/%3").arg(context.category, QString(level), message));
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
    FrameworkLog().log() << QStringLiteral("text \u00e4");
    LogHandler::LogMessage(LogMessageContext(), LogMessageType::warning, QStringLiteral("bare"));
    LogHandler::SetLogIdentification(QStringLiteral("core"));
    LogHandler::SetLogIdentification(QStringLiteral("other"));
    LogHandler::LogMessage(LogMessageContext(), LogMessageType::warning, QStringLiteral("named"));
    return SaySink().isNull();
}

int Fatal()
{
    for (int count = 0; count < 2; ++count)
        SaySink();
    FrameworkLog().fatal() << "fatal text";
    Say(QStringLiteral("still there"));
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
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) {
        Say(QStringLiteral("own: ") + text);
    });
    SaySink();
    qWarning("a warning");
    return 0;
}

int Exit()
{
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
    Say(QStringLiteral("still there"));
    return 0;
}

int HangInside()
{
    LogHandler::RegisterMessageFilter([](auto &...) {
        Say(QStringLiteral("inside"));
        QSemaphore().acquire();
        return true;
    });
    FrameworkLog().log() << "text";
    return 0;
}

int WaitAndLog()
{
    SaySink();
    Say(QStringLiteral("ready"));
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
    Say(QStringLiteral("alive"));
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

int UnmappedRecords()
{
    return StaleRecords(64);
}

int MisalignedRecords()
{
    return StaleRecords(65);
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
        {QStringLiteral("lines"), Lines},
        {QStringLiteral("fatal"), Fatal},
        {QStringLiteral("qt messages"), QtMessages},
        {QStringLiteral("own qt handler"), OwnQtHandler},
        {QStringLiteral("exit"), Exit},
        {QStringLiteral("exit inside a filter"), ExitInsideAFilter},
        {QStringLiteral("fatal inside a filter"), FatalInsideAFilter},
        {QStringLiteral("hang inside"), HangInside},
        {QStringLiteral("wait and log"), WaitAndLog},
        {QStringLiteral("other user"), OtherUser},
        {QStringLiteral("closed pipe"), ClosedPipe},
        {QStringLiteral("many lines"), ManyLines},
        {QStringLiteral("no use"), NoUse},
        {QStringLiteral("unmapped records"), UnmappedRecords},
        {QStringLiteral("misaligned records"), MisalignedRecords},
        {QStringLiteral("records of a dead namesake"), RecordsOfADeadNamesake},
        {QStringLiteral("records of another kind"), RecordsOfAnotherKind},
        {QStringLiteral("small segments"), SmallSegments},
    };
    return scenarios.value(scenario)();
}
