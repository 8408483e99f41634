// A program that ends in one of the ways in which an application may end without, or too late for, a stop.

#include <core/Library.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QSemaphore>
#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tessellum;

namespace {

/*! An application's static object that stops the library from its destructor. */
class LateStop
{
public:
    ~LateStop()
    {
        if (wanted)
            std::printf("late stop %d\n", uninitializeLibrary());
    }
    bool wanted = false;
};

LateStop lateStop;

void callOnHandlerThread(const std::function<void()> &function)
{
    const auto repository = getCoreInterface()->getAppConfigRepository();
    // Never dropped: that would wait for the handler.
    static auto *const handle
        = new std::shared_ptr(repository->getNotificationInterface()->registerCreateHandler(
            QStringLiteral("a"),
            [function](const QString &, const Notification::CreatePoint &, const bool &) { function(); },
            Notification::CreatePoint::Done));
    Q_UNUSED(handle)
    repository->getManipulationInterface()->createAttribute(QStringLiteral("a"), 1,
                                                            Notification::CreatePoint::Done, 3);
}

int runForkBeforeStart()
{
    const pid_t child = fork();
    const bool ok = initializeLibrary() == 0 && uninitializeLibrary() == 1;
    if (child == 0)
        return ok ? 0 : 1;
    int status = 0;
    waitpid(child, &status, 0);
    return ok && WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : 1;
}

/*! Whether the library's event thread runs; the system knows it by the name of its class. */
bool runsEventThread()
{
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(task + QStringLiteral("/comm")));
        if (name.open(QIODevice::ReadOnly) && name.readAll() == "QThread\n")
            return true;
    }
    return false;
}

/*! A thread stays in the list a moment after it was joined. */
bool waitForEndOfEventThread()
{
    const QDeadlineTimer deadline(10000);
    while (runsEventThread()) {
        if (deadline.hasExpired())
            return false;
        QThread::yieldCurrentThread();
    }
    return true;
}

int runWithoutApplication()
{
    for (int run = 0; run < 2; ++run) {
        if (initializeLibrary() != 0 || uninitializeLibrary() != 1 || !waitForEndOfEventThread())
            return 1;
    }
    return initializeLibrary(); // left to the exit
}

} // namespace

int main(int argc, char *argv[])
{
    const QByteArray scenario(argc > 1 ? argv[1] : "");
    if (scenario == "no-application")
        return runWithoutApplication();
    QCoreApplication application(argc, argv);
    if (scenario == "fork-before-start")
        return runForkBeforeStart();
    if (initializeLibrary() != 0)
        return 1;
    QSemaphore running;
    if (scenario == "exit-in-handler") {
        callOnHandlerThread([] { std::exit(0); });
        running.acquire(); // for ever
    } else if (scenario == "endless-handler") {
        callOnHandlerThread([&running] {
            running.release();
            for (;;)
                pause();
        });
        running.acquire();
    }
    lateStop.wanted = scenario == "late-stop";
    return lateStop.wanted || scenario == "endless-handler" || scenario == "no-stop" ? 0 : 1;
}
