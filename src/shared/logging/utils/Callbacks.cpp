#include <shared/logging/utils/Callbacks.h>

namespace Shared::Logging::utils {

bool AnyVote(const QList<LogFilter> &filters, const LogMessageContext &context, const LogLevel &level,
             const QString &message, const QString &line)
{
    for (const LogFilter &filter : filters) {
        try {
            if (filter(context, level, message, line))
                return true;
        } catch (...) { // no vote
        }
    }
    return false;
}

void CallSinks(const QList<LogSink> &sinks, const LogMessageContext &context, const LogLevel &level,
               const QString &message)
{
    for (const LogSink &sink : sinks) {
        try {
            sink(context, level, message);
        } catch (...) { // the next one's turn
        }
    }
}

} // namespace Shared::Logging::utils
