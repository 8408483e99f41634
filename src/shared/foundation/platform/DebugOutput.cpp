#include <shared/foundation/platform/DebugOutput.h>

#include <QByteArray>

#include <cerrno>
#include <unistd.h>

namespace Shared::Foundation::Platform {

void WriteDebugOutput(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const char *next = bytes.constData();
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(STDERR_FILENO, next, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        next += written;
        left -= static_cast<std::size_t>(written);
    }
}

} // namespace Shared::Foundation::Platform
