#include <shared/logging/LogMessageEvent.h>

namespace Shared::Logging {

LogMessageEvent::LogMessageEvent(const LogMessageContext &context_, const LogMessageType &type_,
                                 const QString &message_)
    : QEvent(GetType())
    , context(context_)
    , messageType(type_)
    , message(message_)
{ }

LogMessageEvent::~LogMessageEvent() = default;

} // namespace Shared::Logging
