#include <shared/logging/LogMessageEvent.h>
#include <shared/logging/LogMessageMonitor.h>

#include <QCoreApplication>
#include <QSignalSpy>
#include <QtTest>

#include <support/Literals.h>

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
    const LogMessageContext context(QString(), -1, QString(), "Test"_s, {7}, {});
    return LogMessageEvent(context, LogMessageType::critical, "text"_s);
}

} // namespace

class LogMessageMonitorTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void eventsBecomeSignals()
    {
        EventCounter counter;
        qApp->installEventFilter(&counter);
        for (const bool consume : {false, true}) {
            counter.count = 0;
            LogMessageMonitor monitor(nullptr, consume);
            QSignalSpy spy(&monitor, &LogMessageMonitor::logMessageReceived);
            LogMessageEvent event = Event();
            QCoreApplication::sendEvent(qApp, &event);
            QCOMPARE(spy.size(), 1);
            QCOMPARE(spy.first().at(0).toString(), "text"_s);
            QCOMPARE(spy.first().at(1).value<LogMessageType>(), LogMessageType::critical);
            QCOMPARE(spy.first().at(2).value<LogMessageContext>().parameters, QList<QVariant>{7});
            // An event that only has the number yields no signal, and goes the same way.
            QEvent imposter(LogMessageEvent::GetType());
            QCoreApplication::sendEvent(qApp, &imposter);
            QCOMPARE(spy.size(), 1);
            QCOMPARE(counter.count, consume ? 0 : 2);
        }
    }

    void anEventOfType1002MakesDeaf()
    {
        LogMessageMonitor monitor(nullptr, true);
        QSignalSpy spy(&monitor, &LogMessageMonitor::logMessageReceived);
        QEvent end(static_cast<QEvent::Type>(1002));
        QCoreApplication::sendEvent(qApp, &end);
        LogMessageEvent event = Event();
        QCoreApplication::sendEvent(qApp, &event);
        QVERIFY(spy.isEmpty());
    }
};

QTEST_GUILESS_MAIN(LogMessageMonitorTest)
#include "LogMessageMonitorTest.moc"
