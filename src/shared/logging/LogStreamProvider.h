#pragma once

#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContainer.h>
#include <shared/logging/LogMessageContext.h>
#include <shared/TessellumExport.h>

#include <QVariant>

#include <type_traits>

namespace Shared::Logging {

/*!
 * The front end from which modules log: provider.warning() << "text" << value;
 * The parameters of the level entries travel with the message to sinks and filters; flags among them
 * (LogMessageContext::LogStackTrace) count for this message. Any thread may use one provider.
 */
class TESSELLUM_EXPORT LogStreamProvider : public LogMessageContext
{
public:
    LogStreamProvider() = default;
    explicit LogStreamProvider(const LogMessageContext &context);

    template <typename... P>
    LogMessageContainer verbose(const P &...values) const
    {
        return begin(LogMessageType::verbose, values...);
    }
    template <typename... P>
    LogMessageContainer debug(const P &...values) const
    {
        return begin(LogMessageType::debug, values...);
    }
    template <typename... P>
    LogMessageContainer log(const P &...values) const
    {
        return begin(LogMessageType::log, values...);
    }
    template <typename... P>
    LogMessageContainer warning(const P &...values) const
    {
        return begin(LogMessageType::warning, values...);
    }
    template <typename... P>
    LogMessageContainer critical(const P &...values) const
    {
        return begin(LogMessageType::critical, values...);
    }
    /*! The process ends by abort() when the message has gone out. */
    template <typename... P>
    LogMessageContainer fatal(const P &...values) const
    {
        return begin(LogMessageType::fatal, values...);
    }

    /*! Begins a message with the provider's context and the given parameters in place of its own. */
    LogMessageContainer handleMessageInternal(LogMessageType type, QList<QVariant> messageParameters) const;

private:
    template <typename... P>
    LogMessageContainer begin(LogMessageType type, const P &...values) const
    {
        return handleMessageInternal(type, QList<QVariant>{ToParameter(values)...});
    }

    static QVariant ToParameter(LogMessageFlag flag) { return QVariant::fromValue(LogMessageFlags(flag)); }
    template <typename T>
    static QVariant ToParameter(const T &value)
    {
        if constexpr (std::is_convertible_v<const T &, QVariant>)
            return value;
        else
            return QVariant::fromValue(value);
    }
};

} // namespace Shared::Logging
