#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>
#include <shared/logging/LogMessageEvent.h>
#include <shared/logging/LogMessageMonitor.h>
#include <shared/logging/utils/StackWalker.h>

#include <QSignalSpy>
#include <QtTest>

#include <functional>
#include <memory>
#include <stdexcept>
#include <support/Literals.h>
#include <support/Threads.h>

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

} // namespace

class LogHandlerTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { LogHandler::SetLogLevel(LogMessageType::log); }
    void thresholdDecides()
    {
        Listener listener;
        for (const auto level : {LogMessageType::log, LogMessageType::verbose, LogMessageType::critical}) {
            LogHandler::SetLogLevel(level);
            FrameworkLog().verbose() << "v";
            FrameworkLog().debug() << "d";
            FrameworkLog().log() << "l";
            FrameworkLog().critical() << "c";
        }
        QCOMPARE(listener.messages.join(' '),
                 "LOG:l CRITICAL:c VERBOSE:v DEBUG:d LOG:l CRITICAL:c CRITICAL:c"_s);
        QCOMPARE(listener.lines.size(), 7);
        LogHandler::SetEventLogLevel(LogMessageType::critical);
        QCOMPARE(LogHandler::Instance()->getContext().eventLogLevel.getLogLevel(), LogMessageType::critical);
        QCOMPARE(LogHandler::Instance()->getLogLevel().getLogLevel(), LogMessageType::critical);
    }

    void filtersVote()
    {
        QVERIFY(LogHandler::RegisterMessageSink({}).isNull()
                && LogHandler::RegisterMessageFilter({}).isNull());
        int asked = 0;
        bool vote = true;
        const LogFilter filter = [&](auto &...) {
            ++asked;
            return vote;
        };
        const QString first = LogHandler::RegisterMessageFilter(filter);
        const QString second = LogHandler::RegisterMessageFilter(filter);
        QVERIFY(first.startsWith('{') && !QUuid(first).isNull());
        int heard = 0;
        const QString sink = LogHandler::RegisterMessageSink([&](auto &...) { ++heard; });
        FrameworkLog().log() << "a line that the first filter lets through";
        QCOMPARE(asked, 1);
        vote = false;
        FrameworkLog().log() << "a line that nobody votes for";
        QCOMPARE(asked, 3);
        QCOMPARE(heard, 2);
        QVERIFY(!LogHandler::UnregisterMessageFilter(sink)); // a handle of the other kind
        QVERIFY(LogHandler::UnregisterMessageFilter(first) && LogHandler::UnregisterMessageFilter(second));
        QVERIFY(LogHandler::UnregisterMessageSink(sink) && !LogHandler::UnregisterMessageSink(sink));
    }

    void exceptionsOfCallbacksStayInside()
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

    void callbacksMayLog()
    {
        Listener listener;
        int depth = 0;
        const QString sink = LogHandler::RegisterMessageSink([&](auto &...) {
            if (++depth == 1)
                FrameworkLog().log() << "from a sink";
        });
        FrameworkLog().log() << "text";
        QVERIFY(listener.messages.contains("LOG:from a sink"_s));
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
        QCOMPARE(listener.messages, QStringList{"LOG:text"_s});
        QCOMPARE(LogHandler::Instance()->getLogLevel().getLogLevel(), LogMessageType::warning);
        QVERIFY(LogHandler::UnregisterMessageFilter(filter));
        QVERIFY(LogHandler::UnregisterMessageSink(made));
    }

    void callbacksEndOutsideTheSection()
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

    void manipulatorsReachTheItemsBehindThem()
    {
        Listener listener;
        FrameworkLog().log() << Qt::hex << Qt::showbase << 255 << ' ' << Qt::dec << Qt::noshowbase << 255
                             << ' ' << Qt::fixed << qSetRealNumberPrecision(2) << 1.5 << ' '
                             << qSetFieldWidth(3) << Qt::left << qSetPadChar(QLatin1Char('.')) << 7
                             << qSetFieldWidth(0) << 'x';
        FrameworkLog().log() << "a" << 1 << "b"_s << 'c' << 2.5 << QByteArray("d") << QLatin1String("e")
                             << true << Qt::endl;
        QCOMPARE(listener.messages, QStringList({"LOG:0xff 255 1.50 7..x", "LOG:a1bc2.5de1\n"}));
    }

    void copiesOfAContainerShareOneMessage()
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
        QCOMPARE(listener.messages, QStringList{"WARNING:original and copy"_s});

        // The threshold counts at the end of the message.
        auto kept = std::make_unique<LogMessageContainer>(FrameworkLog().debug());
        *kept << "debug";
        LogHandler::SetLogLevel(LogMessageType::debug);
        kept.reset();
        QCOMPARE(listener.messages.last(), "DEBUG:debug"_s);
    }

    void parametersTravelAndFlagsCount()
    {
        Listener listener;
        const LogStreamProvider provider(LogMessageContext(QString(), -1, QString(), "Test"_s, {0}, {}));
        provider.log(1, "two", "three"_s, 4.0) << "parameters";
        QCOMPARE(listener.contexts.last().messageParameter(), (QList<QVariant>{1, "two"_s, "three"_s, 4.0}));
        QCOMPARE(int(listener.contexts.last().flags), 0);

        provider.log(LogMessageContext::LogStackTrace) << "flag";
        const QString traced = listener.lines.last();
        QVERIFY(traced.startsWith("[TEST LOG] flag\n[STACKTRACE BEGIN]\n"_s) && traced.contains("main"_s));
        QVERIFY(traced.endsWith("\n[STACKTRACE END]"_s));
        provider.log(1, LogMessageContext::LogMessageFlags(LogMessageContext::LogStackTrace)) << "flags";
        QVERIFY(listener.lines.last().endsWith("[STACKTRACE END]"_s));
        provider.log() << "none";
        QCOMPARE(listener.lines.last(), "[TEST LOG] none"_s);
        QVERIFY(listener.contexts.last().parameters.isEmpty());
    }

    void longStackTracesLoseTheirTail()
    {
        Listener listener;
        logDeep(80);
        const QStringList lines = listener.lines.last().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 64);
        QCOMPARE(lines.at(1), "[STACKTRACE BEGIN]"_s);
        QVERIFY2(lines.last().contains("LogHandlerTest::logDeep(int)"_s), qPrintable(lines.last()));
    }

    void linesOfTheStackWalker()
    {
        const QStringList lines = linesFromHere();
        // With debug information or without it.
        const auto form = "^(0x[0-9a-f]+ \\(.+\\): \\(filename not available\\): .+|.+ \\(\\d+\\): .+)$"_s;
        for (const QString &line : lines)
            QVERIFY2(QRegularExpression(form).match(line).hasMatch(), qPrintable(line));
        QVERIFY(lines.at(1).endsWith("LogHandlerTest::linesFromHere()"_s));
        QVERIFY2(lines.first().endsWith("StackWalker::StackWalker::getStackOutput()"_s),
                 qPrintable(lines.first()));
    }

    void levelNames()
    {
        const auto levelOf
            = [](const char *text) { return LogLevel::ConvertStringToLogLevel(text).getLogLevel(); };
        const QStringList names = LogLevel::GetLogLevelStrings();
        QCOMPARE(names.join(' '), "VERBOSE DEBUG LOG WARNING CRITICAL FATAL"_s);
        for (int number = 0; number < names.size(); ++number) {
            QCOMPARE(QString(LogLevel(LogMessageType(number))), names.at(number));
            QCOMPARE(levelOf(names.at(number).toLower().toLatin1()), LogMessageType(number));
        }
        for (const int unknown : {-1, 6})
            QCOMPARE(QString(LogLevel(LogMessageType(unknown))), "UNKNOWN"_s);
        for (const char *text : {"nonsense", "", "UNKNOWN", " LOG"})
            QCOMPARE(levelOf(text), LogMessageType::log);
    }

    void eventsBecomeSignals()
    {
        const LogMessageContext context(QString(), -1, QString(), "Test"_s, {7}, {});
        for (const bool consume : {false, true}) {
            LogMessageMonitor behind(nullptr, false); // a filter that was installed later is asked earlier
            LogMessageMonitor monitor(nullptr, consume);
            QSignalSpy heardBehind(&behind, &LogMessageMonitor::logMessageReceived);
            QSignalSpy heard(&monitor, &LogMessageMonitor::logMessageReceived);
            LogMessageEvent event(context, LogMessageType::critical, "text"_s);
            QCoreApplication::sendEvent(qApp, &event);
            QCOMPARE(heard.size(), 1);
            QCOMPARE(heard.first().at(0).toString(), "text"_s);
            QCOMPARE(heard.first().at(1).value<LogMessageType>(), LogMessageType::critical);
            QCOMPARE(heard.first().at(2).value<LogMessageContext>().parameters, QList<QVariant>{7});
            QCOMPARE(heardBehind.size(), consume ? 0 : 1);
            QEvent imposter(LogMessageEvent::GetType()); // only has the number
            QCoreApplication::sendEvent(qApp, &imposter);
            QEvent end(static_cast<QEvent::Type>(1002));
            QCoreApplication::sendEvent(qApp, &end);
            QCoreApplication::sendEvent(qApp, &event); // it is deaf now
            QCOMPARE(heard.size(), 1);
        }
    }

    void threadsLogAtOnce()
    {
        constexpr int threadCount = 4;
        constexpr int messageCount = 200;
        Listener listener;
        TestSupport::InThreads(threadCount, [](int number) {
            for (int count = 0; count < messageCount; ++count) {
                FrameworkLog().log() << number << '/' << count;
                LogHandler::UnregisterMessageSink(LogHandler::RegisterMessageSink([](auto &...) {}));
            }
        });
        QCOMPARE(listener.messages.size(), threadCount * messageCount);
        listener.messages.removeDuplicates();
        QCOMPARE(listener.messages.size(), threadCount * messageCount);
        QCOMPARE(listener.lines.size(), threadCount * messageCount);
    }

private:
    static Q_NEVER_INLINE QStringList linesFromHere()
    {
        utils::StackWalker::StackWalker walker;
        QStringList lines = walker.getStackOutput();
        lines.detach(); // what follows the call keeps the frame on the stack
        return lines;
    }
    static Q_NEVER_INLINE int logDeep(int depth)
    {
        if (depth == 0)
            FrameworkLog().log(LogMessageContext::LogStackTrace) << "text";
        // What follows the call keeps the frame on the stack.
        return depth == 0 ? 0 : qMax(depth, logDeep(depth - 1));
    }
};

QTEST_GUILESS_MAIN(LogHandlerTest)
#include "LogHandlerTest.moc"
