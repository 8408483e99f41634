#pragma once

#include <shared/logging/LogHandler.h>

#include <QMutex>
#include <QStringList>

namespace TestSupport {

// Collects what is logged, as "LEVEL text", for as long as it lives.
class LogCapture
{
public:
    LogCapture()
        : handle(Shared::Logging::LogHandler::RegisterMessageSink(
            [this](const Shared::Logging::LogMessageContext &, const Shared::Logging::LogLevel &level,
                   const QString &message) {
                QMutexLocker locker(&mutex);
                collected.append(QString(level) + QLatin1Char(' ') + message);
            }))
    { }
    ~LogCapture() { Shared::Logging::LogHandler::UnregisterMessageSink(handle); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const
    {
        QMutexLocker locker(&mutex);
        return collected;
    }

private:
    mutable QMutex mutex;
    QStringList collected;
    QString handle;
};

} // namespace TestSupport
