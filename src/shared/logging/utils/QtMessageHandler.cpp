#include <shared/logging/LogHandler.h>
#include <shared/logging/utils/QtMessageHandler.h>

#include <QtGlobal>

namespace Shared::Logging::utils {

namespace {

void HandleQtMessage(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    LogHandler::LogMessage(LogMessageContext(), LogLevel(type), message);
}

} // namespace

void InstallQtMessageHandler()
{
    const QtMessageHandler current = qInstallMessageHandler(nullptr);
    const QtMessageHandler none = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(current == none ? HandleQtMessage : current);
}

void UninstallQtMessageHandler()
{
    const QtMessageHandler current = qInstallMessageHandler(nullptr);
    if (current != HandleQtMessage)
        qInstallMessageHandler(current);
}

} // namespace Shared::Logging::utils
