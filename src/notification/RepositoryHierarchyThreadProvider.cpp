#include "RepositoryHierarchyThreadProvider.h"

#include <QCoreApplication>
#include <QSemaphore>

namespace Tessellum::Core {

namespace {

constexpr int EndCheckMilliseconds = 50;
std::atomic<quint64> releaseCount = 0;

} // namespace

RepositoryHierarchyThreadProvider::RepositoryHierarchyThreadProvider()
    : m_thread(std::make_unique<QThread>())
    , m_marker(std::make_unique<QObject>())
{
    m_marker->moveToThread(m_thread.get());
}

RepositoryHierarchyThreadProvider::~RepositoryHierarchyThreadProvider()
{
    quitAndJoin();
}

QThread *RepositoryHierarchyThreadProvider::getThread()
{
    if (m_state.load(std::memory_order_acquire) != State::Running) {
        const QMutexLocker locker(&m_mutex);
        m_wantedAgain = true; // quitAndJoin() sees to it where the thread is just ending
        startLocked();
    }
    return m_thread.get();
}

void RepositoryHierarchyThreadProvider::moveToEventThread(QObject *object)
{
    if (object)
        object->moveToThread(getThread());
}

bool RepositoryHierarchyThreadProvider::barrier(int milliseconds)
{
    if (QThread::currentThread() == m_thread.get() || !QCoreApplication::instance() || !m_thread->isRunning())
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
        m_marker.get(), [passed] { passed->release(); }, Qt::QueuedConnection);
    while (!passed->tryAcquire(1, EndCheckMilliseconds)) {
        if (!m_thread->isRunning())
            return true;
        if (deadline.hasExpired())
            return false;
    }
    return true;
}

bool RepositoryHierarchyThreadProvider::quitAndJoin(int milliseconds)
{
    if (QThread::currentThread() == m_thread.get())
        return false;
    {
        const QMutexLocker locker(&m_mutex);
        if (m_state == State::Ended)
            return true;
        m_state = State::Ending;
        m_wantedAgain = false;
    }
    m_thread->quit();
    const bool joined = m_thread->wait(QDeadlineTimer(milliseconds));

    const QMutexLocker locker(&m_mutex);
    if (m_state != State::Ending || !joined)
        return joined;
    m_state = State::Ended;
    if (m_wantedAgain)
        startLocked();
    return true;
}

void RepositoryHierarchyThreadProvider::startLocked()
{
    // Without an application object an event loop ends at once.
    if (m_state != State::Ended || !QCoreApplication::instance())
        return;
    m_thread->start(QThread::InheritPriority);
    m_state.store(State::Running, std::memory_order_release);
}

void RepositoryHierarchyThreadProvider::CountRelease()
{
    releaseCount.fetch_add(1, std::memory_order_relaxed);
}

} // namespace Tessellum::Core
