#pragma once

#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContext.h>
#include <shared/TessellumExport.h>

#include <QString>
#include <QTextStream>

#include <memory>
#include <utility>

namespace Shared::Logging {

/*! The context of a message that is being written, with its text so far. */
struct LogMessageContainerContext : LogMessageContext
{
    explicit LogMessageContainerContext(const LogMessageContext &context)
        : LogMessageContext(context)
    { }

    QString message;
};

/*!
 * A message that is being written. Copies share one text; the message goes out when the last of them dies, so
 * a statement that streams several values yields one message at its end. Takes everything that QTextStream
 * takes; a copy also takes over the formatting, so a manipulator reaches the items behind it. A container and
 * its copies live and die in one thread.
 */
class TESSELLUM_EXPORT LogMessageContainer : private QTextStream
{
public:
    LogMessageContainer(const LogMessageContext &context, const LogMessageType &type);
    LogMessageContainer(const LogMessageContainer &other);
    LogMessageContainer &operator=(const LogMessageContainer &) = delete;
    /*! The last copy hands the message to LogHandler::LogMessage(). */
    ~LogMessageContainer() override;

    /*! Adds value to the text, with nothing before or behind it. */
    template <typename T>
    LogMessageContainer operator<<(T &&value)
    {
        static_cast<QTextStream &>(*this) << std::forward<T>(value);
        return *this;
    }

private:
    LogMessageContainer(std::shared_ptr<LogMessageContainerContext> sharedContext,
                        LogMessageType messageType);

    std::shared_ptr<LogMessageContainerContext> context;
    LogMessageType type;
};

} // namespace Shared::Logging
