#include <shared/foundation/platform/DebugOutput.h>

#include <QByteArray>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <unistd.h>

namespace Shared::Foundation::Platform {

namespace {

/*!
 * Keeps the signal of a write to a pipe that nobody reads any more from this thread: it would end the
 * process.
 */
class BrokenPipeGuard
{
public:
    BrokenPipeGuard()
    {
        sigemptyset(&brokenPipe);
        sigaddset(&brokenPipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &brokenPipe, &formerMask);
    }
    ~BrokenPipeGuard()
    {
        const int error = errno;
        if (broken && !sigismember(&formerMask, SIGPIPE)) {
            const timespec atOnce{0, 0};
            sigtimedwait(&brokenPipe, nullptr, &atOnce);
        }
        pthread_sigmask(SIG_SETMASK, &formerMask, nullptr);
        errno = error;
    }
    Q_DISABLE_COPY(BrokenPipeGuard)

    void setBroken() { broken = true; }

private:
    sigset_t brokenPipe;
    sigset_t formerMask;
    bool broken = false;
};

} // namespace

void WriteDebugOutput(const QString &text)
{
    BrokenPipeGuard guard;
    const QByteArray bytes = text.toUtf8();
    const char *next = bytes.constData();
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(STDERR_FILENO, next, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            if (written < 0 && errno == EPIPE)
                guard.setBroken();
            return;
        }
        next += written;
        left -= static_cast<std::size_t>(written);
    }
}

} // namespace Shared::Foundation::Platform
