#include "StopSignals.h"
#include "ToolError.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace Tessellum::Tool {

namespace {

volatile std::sig_atomic_t signalPipe = -1; // a signal handler reaches nothing but this

void onSignal(int)
{
    const int saved = errno;
    if (write(signalPipe, "", 1) < 0) { // full: the end is known already
    }
    errno = saved;
}

void take(int signal, void (*handler)(int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(signal, &action, nullptr);
}

} // namespace

StopSignals::StopSignals()
{
    std::array<int, 2> ends = {-1, -1};
    if (pipe(ends.data()) != 0)
        Fail(QStringLiteral("there is no descriptor for signals"));
    toldToEnd = ends[0];
    signalPipe = ends[1];
    for (const int signal : {SIGINT, SIGTERM})
        take(signal, onSignal, SA_RESTART | int(SA_RESETHAND));
    for (const int signal : {SIGPIPE, SIGTTIN})
        take(signal, SIG_IGN, 0);
}

StopSignals::~StopSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGPIPE, SIGTTIN})
        take(signal, SIG_DFL, 0);
    close(signalPipe);
    signalPipe = -1;
    close(toldToEnd);
}

void StopSignals::raise() const
{
    onSignal(SIGTERM);
}

void StopSignals::wait() const
{
    waitForInput(-1);
}

bool StopSignals::waitForInput(int descriptor) const
{
    // A negative descriptor is one that poll() leaves out.
    std::array<pollfd, 2> waited = {pollfd{toldToEnd, POLLIN, 0}, pollfd{descriptor, POLLIN, 0}};
    while (poll(waited.data(), waited.size(), -1) < 0 && errno == EINTR) { }
    return waited[0].revents == 0;
}

} // namespace Tessellum::Tool
