// A plug-in that carries its own copy of the log code.

#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>

#include <atomic>

using namespace Shared::Logging;

namespace {

std::atomic<int> heard{0};
QString sink;
QString filter;

} // namespace

extern "C" {

Q_DECL_EXPORT const void *pluginHandler()
{
    return LogHandler::Instance();
}

Q_DECL_EXPORT void pluginLog(int level, const char *text)
{
    LogHandler::LogMessage(FrameworkLog(), static_cast<LogMessageType>(level), QString::fromUtf8(text));
}

Q_DECL_EXPORT void pluginSetLogLevel(int level)
{
    LogHandler::SetLogLevel(static_cast<LogMessageType>(level));
}

Q_DECL_EXPORT void pluginIdentify()
{
    LogHandler::SetLogIdentification(QStringLiteral("plug-in"));
}

Q_DECL_EXPORT bool pluginRegister()
{
    sink = LogHandler::RegisterMessageSink([](auto &...) { ++heard; });
    filter = LogHandler::RegisterMessageFilter([](auto &...) {
        FrameworkLog().log() << "from the plug-in's filter";
        return false;
    });
    return !sink.isNull() && !filter.isNull();
}

Q_DECL_EXPORT int pluginHeard()
{
    return heard;
}

Q_DECL_EXPORT bool pluginUnregister()
{
    return LogHandler::UnregisterMessageSink(sink) && LogHandler::UnregisterMessageFilter(filter);
}
}
