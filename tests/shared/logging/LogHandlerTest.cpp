#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>
#include <shared/logging/utils/StackTraceSource.h>

#include <QtTest>

#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace Shared::Logging;

namespace {

/*!
 * What a sink and a filter of the test's own hear. The filter sees the formatted line and keeps it off the
 * debug output.
 */
class Listener
{
public:
    Listener()
        : sink(LogHandler::RegisterMessageSink(
            [this](const LogMessageContext &context, const LogLevel &level, const QString &message) {
                const QMutexLocker lock(&mutex);
                contexts.append(context);
                messages.append(QString(level) + QLatin1Char(':') + message);
            }))
        , filter(LogHandler::RegisterMessageFilter(
              [this](const LogMessageContext &, const LogLevel &, const QString &, const QString &line) {
                  const QMutexLocker lock(&mutex);
                  lines.append(line);
                  return false;
              }))
    { }
    ~Listener()
    {
        LogHandler::UnregisterMessageSink(sink);
        LogHandler::UnregisterMessageFilter(filter);
    }
    Q_DISABLE_COPY(Listener)

    QMutex mutex;
    QList<LogMessageContext> contexts;
    QStringList messages;
    QStringList lines;
    const QString sink;
    const QString filter;
};

QStringList LongTrace()
{
    QStringList trace;
    for (int frame = 0; frame < 70; ++frame)
        trace.append(QStringLiteral("frame %1").arg(frame));
    return trace;
}

} // namespace

class LogHandlerTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup();
    void linesToTheLetter();
    void thresholdDecides();
    void handles();
    void filtersVote();
    void exceptionsOfCallbacksStayInside();
    void callbacksMayLog();
    void callbacksEndOutsideTheSection();
    void oneStatementOneMessage();
    void manipulatorsReachTheItemsBehindThem();
    void copiesOfAContainerShareOneMessage();
    void parametersTravelAndFlagsCount();
    void longStackTracesLoseTheirTail();
    void knownToTheMetaObjectSystem();
    void threadsLogAtOnce();
};

void LogHandlerTest::cleanup()
{
    LogHandler::SetLogLevel(LogMessageType::log);
    utils::SetStackTraceFunction(nullptr);
}

void LogHandlerTest::linesToTheLetter()
{
    Listener listener;
    FrameworkLog().warning() << "text " << 5;
    LogHandler::LogMessage(LogMessageContext(), LogMessageType::log, QStringLiteral("bare"));
    LogHandler::SetLogIdentification(QStringLiteral("first"));
    LogHandler::SetLogIdentification(QStringLiteral("second"));
    LogHandler::LogMessage(LogMessageContext(), LogMessageType::critical, QStringLiteral("named"));
    FrameworkLog().log();
    QCOMPARE(listener.lines,
             (QStringList{QStringLiteral("[TESSELLUM WARNING] text 5"), QStringLiteral("[ LOG] bare"),
                          QStringLiteral("[FIRST CRITICAL] named"), QStringLiteral("[TESSELLUM LOG] ")}));
    QCOMPARE(listener.messages,
             (QStringList{QStringLiteral("WARNING:text 5"), QStringLiteral("LOG:bare"),
                          QStringLiteral("CRITICAL:named"), QStringLiteral("LOG:")}));
    QCOMPARE(listener.contexts.first().category, QStringLiteral("Tessellum"));
}

void LogHandlerTest::thresholdDecides()
{
    Listener listener;
    const auto logAll = [] {
        FrameworkLog().verbose() << "v";
        FrameworkLog().debug() << "d";
        FrameworkLog().log() << "l";
        FrameworkLog().critical() << "c";
    };
    logAll();
    QCOMPARE(listener.messages, (QStringList{QStringLiteral("LOG:l"), QStringLiteral("CRITICAL:c")}));
    QCOMPARE(listener.lines.size(), 2);

    listener.messages.clear();
    LogHandler::SetLogLevel(LogMessageType::verbose);
    logAll();
    LogHandler::SetLogLevel(LogMessageType::critical);
    logAll();
    QCOMPARE(listener.messages,
             (QStringList{QStringLiteral("VERBOSE:v"), QStringLiteral("DEBUG:d"), QStringLiteral("LOG:l"),
                          QStringLiteral("CRITICAL:c"), QStringLiteral("CRITICAL:c")}));

    LogHandler::SetEventLogLevel(LogMessageType::critical);
    QCOMPARE(LogHandler::Instance()->getContext().eventLogLevel.getLogLevel(), LogMessageType::critical);
    QCOMPARE(LogHandler::Instance()->getLogLevel().getLogLevel(), LogMessageType::critical);
}

void LogHandlerTest::handles()
{
    QVERIFY(LogHandler::RegisterMessageSink({}).isNull());
    QVERIFY(LogHandler::RegisterMessageFilter({}).isNull());
    QVERIFY(!LogHandler::UnregisterMessageSink(QString()));
    QVERIFY(!LogHandler::UnregisterMessageFilter(QString()));

    const QString sink = LogHandler::RegisterMessageSink([](auto &...) {});
    QVERIFY(sink.startsWith(QLatin1Char('{')) && !QUuid(sink).isNull());
    QVERIFY(!LogHandler::UnregisterMessageFilter(sink));
    QVERIFY(LogHandler::UnregisterMessageSink(sink));
    QVERIFY(!LogHandler::UnregisterMessageSink(sink));
}

void LogHandlerTest::filtersVote()
{
    int asked = 0;
    bool vote = true;
    const LogFilter filter = [&](auto &...) {
        ++asked;
        return vote;
    };
    const QString first = LogHandler::RegisterMessageFilter(filter);
    const QString second = LogHandler::RegisterMessageFilter(filter);
    int heard = 0;
    const QString sink = LogHandler::RegisterMessageSink([&](auto &...) { ++heard; });

    FrameworkLog().log() << "a line that the first filter lets through";
    QCOMPARE(asked, 1);
    vote = false;
    FrameworkLog().log() << "a line that nobody votes for";
    QCOMPARE(asked, 3);
    QCOMPARE(heard, 2);

    for (const QString &handle : {first, second})
        QVERIFY(LogHandler::UnregisterMessageFilter(handle));
    QVERIFY(LogHandler::UnregisterMessageSink(sink));
}

void LogHandlerTest::exceptionsOfCallbacksStayInside()
{
    Listener listener;
    QStringList handles;
    int thrown = 0;
    for (int count = 0; count < 3; ++count) {
        handles.append(LogHandler::RegisterMessageSink([&](auto &...) {
            ++thrown;
            throw std::runtime_error("sink");
        }));
    }
    handles.append(LogHandler::RegisterMessageSink([](auto &...) { throw std::bad_function_call(); }));
    const QString filter = LogHandler::RegisterMessageFilter([&](auto &...) -> bool { throw 1; });

    FrameworkLog().log() << "text";
    FrameworkLog().log() << "text";
    QCOMPARE(thrown, 6);
    QCOMPARE(listener.messages.size(), 2);
    QCOMPARE(listener.lines.size(), 2);

    for (const QString &handle : qAsConst(handles))
        QVERIFY(LogHandler::UnregisterMessageSink(handle));
    QVERIFY(LogHandler::UnregisterMessageFilter(filter));
}

void LogHandlerTest::callbacksMayLog()
{
    Listener listener;
    int depth = 0;
    const QString sink = LogHandler::RegisterMessageSink([&](auto &...) {
        if (++depth == 1)
            FrameworkLog().log() << "from a sink";
    });
    FrameworkLog().log() << "text";
    QVERIFY(listener.messages.contains(QStringLiteral("LOG:from a sink")));
    QCOMPARE(depth, 2);
    QVERIFY(LogHandler::UnregisterMessageSink(sink));

    // Inside the section a message goes to the debug output alone; settings and registrations just work.
    listener.messages.clear();
    QString made;
    const QString filter = LogHandler::RegisterMessageFilter([&](auto &...) {
        FrameworkLog().log() << "from a filter";
        LogHandler::SetLogLevel(LogMessageType::warning);
        made = LogHandler::RegisterMessageSink([](auto &...) {});
        return false;
    });
    FrameworkLog().log() << "text";
    QCOMPARE(listener.messages, QStringList{QStringLiteral("LOG:text")});
    QCOMPARE(LogHandler::Instance()->getLogLevel().getLogLevel(), LogMessageType::warning);
    QVERIFY(LogHandler::UnregisterMessageFilter(filter));
    QVERIFY(LogHandler::UnregisterMessageSink(made));
}

void LogHandlerTest::callbacksEndOutsideTheSection()
{
    Listener listener;
    const auto logsAtItsEnd = [] {
        return std::shared_ptr<int>(new int, [](const int *value) {
            delete value;
            FrameworkLog().log() << "the end of what a callback held";
        });
    };
    const QString sink = LogHandler::RegisterMessageSink([held = logsAtItsEnd()](auto &...) {});
    const QString filter
        = LogHandler::RegisterMessageFilter([held = logsAtItsEnd()](auto &...) { return false; });
    QVERIFY(LogHandler::UnregisterMessageSink(sink));
    QVERIFY(LogHandler::UnregisterMessageFilter(filter));
    QCOMPARE(listener.messages.size(), 2); // a message from inside would have reached no sink
}

void LogHandlerTest::oneStatementOneMessage()
{
    Listener listener;
    FrameworkLog().log() << "a" << 1 << QStringLiteral("b") << 'c' << 2.5 << QByteArray("d")
                         << QLatin1String("e") << true << Qt::endl;
    FrameworkLog().log();
    QCOMPARE(listener.messages, (QStringList{QStringLiteral("LOG:a1bc2.5de1\n"), QStringLiteral("LOG:")}));
}

void LogHandlerTest::manipulatorsReachTheItemsBehindThem()
{
    Listener listener;
    FrameworkLog().log() << Qt::hex << Qt::showbase << 255 << ' ' << Qt::dec << Qt::noshowbase << 255 << ' '
                         << Qt::fixed << qSetRealNumberPrecision(2) << 1.5 << ' ' << qSetFieldWidth(3)
                         << Qt::left << qSetPadChar(QLatin1Char('.')) << 7 << qSetFieldWidth(0) << 'x';
    FrameworkLog().log() << 255 << ' ' << 1.5;
    QCOMPARE(listener.messages,
             (QStringList{QStringLiteral("LOG:0xff 255 1.50 7..x"), QStringLiteral("LOG:255 1.5")}));
}

void LogHandlerTest::copiesOfAContainerShareOneMessage()
{
    Listener listener;
    auto copy = std::make_unique<LogMessageContainer>([&] {
        LogMessageContainer original = FrameworkLog().warning();
        original << "original";
        LogMessageContainer other = original;
        other << " and copy";
        return other;
    }());
    QVERIFY(listener.messages.isEmpty());
    copy.reset();
    QCOMPARE(listener.messages, QStringList{QStringLiteral("WARNING:original and copy")});

    // The threshold counts at the end of the message.
    auto kept = std::make_unique<LogMessageContainer>(FrameworkLog().debug());
    *kept << "debug";
    LogHandler::SetLogLevel(LogMessageType::debug);
    kept.reset();
    QCOMPARE(listener.messages.last(), QStringLiteral("DEBUG:debug"));
}

void LogHandlerTest::parametersTravelAndFlagsCount()
{
    Listener listener;
    const LogStreamProvider provider(
        LogMessageContext(QString(), -1, QString(), QStringLiteral("Test"), {0}, {}));
    provider.log(1, "two", QStringLiteral("three"), 4.0) << "parameters";
    QCOMPARE(listener.contexts.last().messageParameter(),
             (QList<QVariant>{1, QStringLiteral("two"), QStringLiteral("three"), 4.0}));
    QCOMPARE(int(listener.contexts.last().flags), 0);

    provider.log(LogMessageContext::LogStackTrace) << "flag";
    QCOMPARE(listener.lines.last(), QStringLiteral("[TEST LOG] flag\n[STACKTRACE BEGIN]\n[STACKTRACE END]"));
    provider.log(1, LogMessageContext::LogMessageFlags(LogMessageContext::LogStackTrace)) << "flags";
    QVERIFY(listener.lines.last().endsWith(QStringLiteral("[STACKTRACE END]")));
    provider.log() << "none";
    QCOMPARE(listener.lines.last(), QStringLiteral("[TEST LOG] none"));
    QVERIFY(listener.contexts.last().parameters.isEmpty());
}

void LogHandlerTest::longStackTracesLoseTheirTail()
{
    Listener listener;
    utils::SetStackTraceFunction(LongTrace);
    FrameworkLog().log(LogMessageContext::LogStackTrace) << "text";
    const QStringList lines = listener.lines.last().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 64);
    QCOMPARE(lines.at(1), QStringLiteral("[STACKTRACE BEGIN]"));
    QCOMPARE(lines.last(), QStringLiteral("frame 61"));
}

void LogHandlerTest::knownToTheMetaObjectSystem()
{
    Listener listener;
    QVERIFY(QMetaObject::invokeMethod(LogHandler::Instance(), "onCustomLogMessage", Qt::DirectConnection,
                                      Q_ARG(Shared::Logging::LogMessageContext, LogMessageContext()),
                                      Q_ARG(Shared::Logging::LogLevel, LogMessageType::warning),
                                      Q_ARG(QString, QStringLiteral("invoked"))));
    QCOMPARE(listener.messages, QStringList{QStringLiteral("WARNING:invoked")});
    QVERIFY(QMetaType::isRegistered(QMetaType::type("Shared::Logging::LogMessageContext::LogMessageFlags")));
}

void LogHandlerTest::threadsLogAtOnce()
{
    constexpr int threadCount = 4;
    constexpr int messageCount = 200;
    Listener listener;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([number] {
            for (int count = 0; count < messageCount; ++count) {
                FrameworkLog().log() << number << '/' << count;
                const QString handle = LogHandler::RegisterMessageSink([](auto &...) {});
                LogHandler::UnregisterMessageSink(handle);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(listener.messages.size(), threadCount * messageCount);
    listener.messages.removeDuplicates();
    QCOMPARE(listener.messages.size(), threadCount * messageCount);
    QCOMPARE(listener.lines.size(), threadCount * messageCount);
}

QTEST_GUILESS_MAIN(LogHandlerTest)
#include "LogHandlerTest.moc"
