#pragma once

#include <shared/synchronization/Singleton.h>
#include <shared/TessellumExport.h>

#include <QDeadlineTimer>
#include <QMutex>
#include <QThread>

#include <atomic>
#include <memory>

namespace Tessellum::Core {

/*!
 * Owns the event thread of the repositories, on which their nodes live and take queued signals. The thread
 * starts at first use and again at the next use after quitAndJoin(). Any thread may call.
 *
 * Lock: guards start and end of the thread; it is not held while the thread ends.
 */
class TESSELLUM_EXPORT RepositoryHierarchyThreadProvider
    : public Shared::Singleton<RepositoryHierarchyThreadProvider>
{
public:
    /*! The thread, running if there is a QCoreApplication. Owned by the provider; the same object for the
     * whole process. */
    QThread *getThread();
    /*! Moves \a object, which lives on the calling thread and has no parent, to the event thread. Null is
     * fine. */
    void moveToEventThread(QObject *object);

    /*!
     * Waits until the event thread has deleted what was released so far, and what that released in turn.
     * Returns at once on that thread, if it does not run, and without a QCoreApplication (no thread delivers
     * events then). False if \a milliseconds ran out; -1: no limit. No lock may be held.
     */
    bool barrier(int milliseconds = -1);
    /*! Ends the thread after the event it is at. Does nothing on that thread. False if \a milliseconds ran
     * out. */
    bool quitAndJoin(int milliseconds = -1);

    /*! Counts a node after it was handed to its thread for deletion. For the deleter of nodes. */
    static void CountRelease();

protected:
    friend class Shared::Singleton<RepositoryHierarchyThreadProvider>;
    RepositoryHierarchyThreadProvider();
    ~RepositoryHierarchyThreadProvider() override;

private:
    enum class State { Ended, Running, Ending };
    void startLocked();
    bool waitForRound(const QDeadlineTimer &deadline);

    QMutex mutex;
    std::atomic<State> state = State::Ended; // changed under the mutex
    bool wantedAgain = false; // somebody asked for the thread while it was ending
    const std::unique_ptr<QThread> thread;
    const std::unique_ptr<QObject> marker; // lives on the event thread and takes the marks of barrier()
};

} // namespace Tessellum::Core
