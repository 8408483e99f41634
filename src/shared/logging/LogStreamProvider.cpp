#include <shared/logging/LogStreamProvider.h>

namespace Shared::Logging {

LogStreamProvider::LogStreamProvider(const LogMessageContext &context)
    : LogMessageContext(context)
{ }

LogMessageContainer LogStreamProvider::handleMessageInternal(LogMessageType type,
                                                             QList<QVariant> messageParameters) const
{
    LogMessageContext context(*this);
    context.parameters = std::move(messageParameters);
    for (const QVariant &parameter : std::as_const(context.parameters)) {
        if (parameter.canConvert<LogMessageFlags>())
            context.flags |= parameter.value<LogMessageFlags>();
    }
    return LogMessageContainer(context, type);
}

} // namespace Shared::Logging
