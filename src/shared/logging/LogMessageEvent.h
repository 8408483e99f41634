#pragma once

#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContext.h>
#include <shared/TessellumExport.h>

#include <QEvent>
#include <QString>

namespace Shared::Logging {

/*!
 * A log message on its way to the application object, where a LogMessageMonitor picks it up. The log handler
 * itself sends none.
 */
class TESSELLUM_EXPORT LogMessageEvent : public QEvent
{
public:
    LogMessageEvent(const LogMessageContext &context, const LogMessageType &type, const QString &message);
    LogMessageEvent(const LogMessageEvent &) = default;
    LogMessageEvent &operator=(const LogMessageEvent &) = default;
    ~LogMessageEvent() override;

    const LogMessageContext &getContext() const { return context; }
    LogMessageType getType() const { return messageType; }
    const QString &getMessage() const { return message; }

    /*! The event type of all log message events. */
    static QEvent::Type GetType() { return static_cast<QEvent::Type>(1003); }

private:
    LogMessageContext context;
    LogMessageType messageType;
    QString message;
};

} // namespace Shared::Logging
