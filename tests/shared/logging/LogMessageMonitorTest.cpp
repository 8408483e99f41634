#include <shared/logging/LogMessageEvent.h>
#include <shared/logging/LogMessageMonitor.h>

#include <QCoreApplication>
#include <QSignalSpy>
#include <QtTest>

using namespace Shared::Logging;

namespace {

/*!
 * Counts the log message events that get as far as this filter. A filter that was installed later is asked
 * earlier.
 */
class EventCounter : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == LogMessageEvent::GetType();
        return false;
    }
};

LogMessageEvent Event()
{
    const LogMessageContext context(QString(), -1, QString(), QStringLiteral("Test"), {7}, {});
    return LogMessageEvent(context, LogMessageType::critical, QStringLiteral("text"));
}

} // namespace

class LogMessageMonitorTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void eventsBecomeSignals_data();
    void eventsBecomeSignals();
    void anEventOfType1002MakesDeaf();
};

void LogMessageMonitorTest::eventsBecomeSignals_data()
{
    QTest::addColumn<bool>("consume");
    QTest::newRow("passing on") << false;
    QTest::newRow("consuming") << true;
}

void LogMessageMonitorTest::eventsBecomeSignals()
{
    QFETCH(bool, consume);
    EventCounter counter;
    qApp->installEventFilter(&counter);
    LogMessageMonitor monitor(nullptr, consume);
    QSignalSpy spy(&monitor, &LogMessageMonitor::logMessageReceived);

    LogMessageEvent event = Event();
    QCoreApplication::sendEvent(qApp, &event);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().at(0).toString(), QStringLiteral("text"));
    QCOMPARE(spy.first().at(1).value<LogMessageType>(), LogMessageType::critical);
    QCOMPARE(spy.first().at(2).value<LogMessageContext>().parameters, QList<QVariant>{7});
    QCOMPARE(counter.count, consume ? 0 : 1);

    // An event that only has the number yields no signal, and goes the same way.
    QEvent imposter(LogMessageEvent::GetType());
    QCoreApplication::sendEvent(qApp, &imposter);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(counter.count, consume ? 0 : 2);

    LogMessageEvent copy(event);
    QCoreApplication::sendEvent(this, &copy);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(copy.getMessage(), QStringLiteral("text"));
}

void LogMessageMonitorTest::anEventOfType1002MakesDeaf()
{
    LogMessageMonitor monitor(nullptr, true);
    QSignalSpy spy(&monitor, &LogMessageMonitor::logMessageReceived);
    QEvent end(static_cast<QEvent::Type>(1002));
    QCoreApplication::sendEvent(qApp, &end);
    LogMessageEvent event = Event();
    QCoreApplication::sendEvent(qApp, &event);
    QVERIFY(spy.isEmpty());
}

QTEST_GUILESS_MAIN(LogMessageMonitorTest)
#include "LogMessageMonitorTest.moc"
