#include <shared/logging/utils/LogLine.h>
#include <shared/logging/utils/StackWalker.h>

namespace Shared::Logging::utils {

namespace {

constexpr int maximumTraceLines = 63;

} // namespace

QString FormatLine(const LogMessageContext &context, const LogLevel &level, const QString &message,
                   const QString &identification)
{
    const QString name = (context.category.isEmpty() ? identification : context.category).toUpper();
    const QString levelName = level;
    QString line;
    line.reserve(name.size() + levelName.size() + message.size() + 8);
    line += QLatin1Char('[');
    line += name;
    line += QLatin1Char(' ');
    line += levelName;
    line += QLatin1String("] ");
    line += message;
    return line;
}

QString StackTraceText(const LogMessageContext &context)
{
    if (!context.flags.testFlag(LogMessageContext::LogStackTrace))
        return {};
    QStringList lines{QStringLiteral("[STACKTRACE BEGIN]")};
    lines += StackWalker::StackWalker().getStackOutput();
    lines += QStringLiteral("[STACKTRACE END]");
    return QLatin1Char('\n') + lines.mid(0, maximumTraceLines).join(QLatin1Char('\n'));
}

} // namespace Shared::Logging::utils
