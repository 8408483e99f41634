#include "RepositoryHierarchyThreadProvider.h"

#include <QCoreApplication>
#include <QSemaphore>

namespace Tessellum::Core {

namespace {

constexpr int EndCheckMilliseconds = 50;
std::atomic<quint64> releaseCount = 0;

} // namespace

RepositoryHierarchyThreadProvider::RepositoryHierarchyThreadProvider()
    : thread(std::make_unique<QThread>())
    , marker(std::make_unique<QObject>())
{
    marker->moveToThread(thread.get());
}

RepositoryHierarchyThreadProvider::~RepositoryHierarchyThreadProvider()
{
    quitAndJoin();
}

QThread *RepositoryHierarchyThreadProvider::getThread()
{
    if (state.load(std::memory_order_acquire) != State::Running) {
        const QMutexLocker locker(&mutex);
        wantedAgain = true; // quitAndJoin() sees to it where the thread is just ending
        startLocked();
    }
    return thread.get();
}

void RepositoryHierarchyThreadProvider::moveToEventThread(QObject *object)
{
    if (object)
        object->moveToThread(getThread());
}

bool RepositoryHierarchyThreadProvider::barrier(int milliseconds)
{
    if (QThread::currentThread() == thread.get() || !QCoreApplication::instance() || !thread->isRunning())
        return true;
    const QDeadlineTimer deadline(milliseconds);
    quint64 before = 0;
    do {
        before = releaseCount;
        if (!waitForRound(deadline))
            return false;
    } while (releaseCount != before);
    return true;
}

bool RepositoryHierarchyThreadProvider::waitForRound(const QDeadlineTimer &deadline)
{
    const auto passed = std::make_shared<QSemaphore>();
    QMetaObject::invokeMethod(
        marker.get(), [passed] { passed->release(); }, Qt::QueuedConnection);
    while (!passed->tryAcquire(1, EndCheckMilliseconds)) {
        // The application object may end meanwhile, and takes the delivery of the mark with it.
        if (!thread->isRunning() || !QCoreApplication::instance())
            return true;
        if (deadline.hasExpired())
            return false;
    }
    return true;
}

bool RepositoryHierarchyThreadProvider::quitAndJoin(int milliseconds)
{
    if (QThread::currentThread() == thread.get())
        return false;
    {
        const QMutexLocker locker(&mutex);
        if (state == State::Ended)
            return true;
        state = State::Ending;
        wantedAgain = false;
    }
    thread->quit();
    const bool joined = thread->wait(QDeadlineTimer(milliseconds));

    const QMutexLocker locker(&mutex);
    if (state != State::Ending || !joined)
        return joined;
    state = State::Ended;
    if (wantedAgain)
        startLocked();
    return true;
}

void RepositoryHierarchyThreadProvider::startLocked()
{
    // Without an application object an event loop ends at once.
    if (state != State::Ended || !QCoreApplication::instance())
        return;
    thread->start(QThread::InheritPriority);
    state.store(State::Running, std::memory_order_release);
}

void RepositoryHierarchyThreadProvider::CountRelease()
{
    releaseCount.fetch_add(1, std::memory_order_relaxed);
}

} // namespace Tessellum::Core
