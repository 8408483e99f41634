#include <shared/foundation/platform/StackFrames.h>
#include <shared/logging/utils/StackWalker.h>

namespace Shared::Logging::utils::StackWalker {

namespace {

constexpr int maximumFrames = 1000;

QString OrElse(const QString &text, const char *replacement)
{
    return text.isEmpty() ? QLatin1String(replacement) : text;
}

QString FrameText(const Foundation::Platform::StackFrame &frame)
{
    const QString function = OrElse(frame.function, "(function-name not available)");
    if (!frame.file.isEmpty()) {
        return QStringLiteral("%1 (%2): %3").arg(frame.file, QString::number(frame.line), function);
    }
    return QString::asprintf("%p", frame.address)
        + QStringLiteral(" (%1): %2: %3")
              .arg(OrElse(frame.module, "(module-name not available)"),
                   QStringLiteral("(filename not available)"), function);
}

} // namespace

QStringList StackWalker::getStackOutput()
{
    QStringList lines;
    const auto frames = Foundation::Platform::CaptureStack(maximumFrames);
    for (const auto &frame : frames)
        lines.append(FrameText(frame).trimmed());
    return lines;
}

} // namespace Shared::Logging::utils::StackWalker
