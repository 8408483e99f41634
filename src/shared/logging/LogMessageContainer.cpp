#include <shared/logging/LogHandler.h>
#include <shared/logging/LogMessageContainer.h>

namespace Shared::Logging {

LogMessageContainer::LogMessageContainer(std::shared_ptr<LogMessageContainerContext> sharedContext,
                                         LogMessageType messageType)
    : QTextStream(&sharedContext->message, QIODevice::ReadWrite)
    , context(std::move(sharedContext))
    , type(messageType)
{ }

LogMessageContainer::LogMessageContainer(const LogMessageContext &context_, const LogMessageType &type_)
    : LogMessageContainer(std::make_shared<LogMessageContainerContext>(context_), type_)
{ }

LogMessageContainer::LogMessageContainer(const LogMessageContainer &other)
    : LogMessageContainer(other.context, other.type)
{
    setIntegerBase(other.integerBase());
    setNumberFlags(other.numberFlags());
    setFieldWidth(other.fieldWidth());
    setPadChar(other.padChar());
    setFieldAlignment(other.fieldAlignment());
    setRealNumberNotation(other.realNumberNotation());
    setRealNumberPrecision(other.realNumberPrecision());
}

LogMessageContainer::~LogMessageContainer()
{
    // Reading out a text that nobody will see is spared.
    if (context.use_count() == 1 && LogHandler::IsEnabled(type))
        LogHandler::LogMessage(*context, type, readAll());
}

} // namespace Shared::Logging
