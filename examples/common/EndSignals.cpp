#include "EndSignals.h"

#include <cerrno>
#include <csignal>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr int endingSignals[] = {SIGINT, SIGTERM};

volatile std::sig_atomic_t eventDescriptor = -1; // a signal handler reaches nothing but this

void onSignal(int)
{
    const int saved = errno;
    eventfd_write(eventDescriptor, 1);
    errno = saved;
}

void handle(void (*handler)(int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    for (const int signal : endingSignals)
        sigaction(signal, &action, nullptr);
}

} // namespace

EndSignals::EndSignals()
{
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0)
        return; // the signals end the process at once
    notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, [this] {
        notifier->setEnabled(false);
        raisedBefore = true;
        Q_EMIT raised();
    });
    eventDescriptor = descriptor;
    handle(onSignal, SA_RESTART | static_cast<int>(SA_RESETHAND));
}

EndSignals::~EndSignals()
{
    if (!notifier)
        return;
    handle(SIG_DFL, 0);
    eventDescriptor = -1;
    close(static_cast<int>(notifier->socket()));
}
