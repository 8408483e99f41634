#include <shared/logging/LogMessageEvent.h>
#include <shared/logging/LogMessageMonitor.h>

#include <QCoreApplication>

namespace Shared::Logging {

namespace {

constexpr auto endOfMonitoring = static_cast<QEvent::Type>(1002);

} // namespace

LogMessageMonitor::LogMessageMonitor(QObject *parent, const bool &consumeEvents_)
    : QObject(parent)
    , consumeEvents(consumeEvents_)
{
    qRegisterMetaType<LogMessageType>();
    qRegisterMetaType<LogMessageContext>();
    if (QCoreApplication *const application = QCoreApplication::instance())
        application->installEventFilter(this);
}

bool LogMessageMonitor::eventFilter(QObject *watched, QEvent *event)
{
    QCoreApplication *const application = QCoreApplication::instance();
    if (watched != application || !event)
        return false;
    if (event->type() == endOfMonitoring) {
        application->removeEventFilter(this);
        return false;
    }
    if (event->type() != LogMessageEvent::GetType())
        return false;
    const bool consume = consumeEvents; // a slot may end this monitor
    if (const auto *logEvent = dynamic_cast<LogMessageEvent *>(event))
        Q_EMIT logMessageReceived(logEvent->getMessage(), logEvent->getType(), logEvent->getContext());
    return consume;
}

} // namespace Shared::Logging
