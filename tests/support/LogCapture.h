#pragma once

#include <shared/logging/LogHandler.h>

#include <QMutex>
#include <QStringList>

#include <memory>

namespace TestSupport {

// Collects what is logged, as "LEVEL text", for as long as it lives. Another thread may be at a line by then.
class LogCapture
{
public:
    LogCapture()
        : handle(Shared::Logging::LogHandler::RegisterMessageSink(
            [kept = state](const Shared::Logging::LogMessageContext &, const Shared::Logging::LogLevel &level,
                           const QString &message) {
                QMutexLocker locker(&kept->mutex);
                kept->lines.append(QString(level) + QLatin1Char(' ') + message);
            }))
    { }
    ~LogCapture() { Shared::Logging::LogHandler::UnregisterMessageSink(handle); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const
    {
        QMutexLocker locker(&state->mutex);
        return state->lines;
    }

private:
    struct State
    {
        QMutex mutex;
        QStringList lines;
    };

    const std::shared_ptr<State> state = std::make_shared<State>();
    QString handle;
};

} // namespace TestSupport
