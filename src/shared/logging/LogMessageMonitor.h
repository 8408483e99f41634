#pragma once

#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContext.h>
#include <shared/TessellumExport.h>

#include <QObject>
#include <QString>

namespace Shared::Logging {

/*!
 * Turns the log message events that reach the application object into a signal. To be made and used on the
 * thread of the application object, which must exist. An event of type 1002 sent to the application makes a
 * monitor deaf.
 */
class TESSELLUM_EXPORT LogMessageMonitor : public QObject
{
    Q_OBJECT
public:
    /*! consumeEvents: a log message event goes no further than to this monitor. */
    LogMessageMonitor(QObject *parent, const bool &consumeEvents);

Q_SIGNALS:
    void logMessageReceived(QString message, Shared::Logging::LogMessageType type,
                            Shared::Logging::LogMessageContext context);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const bool consumeEvents;
};

} // namespace Shared::Logging
