#pragma once

#include <shared/TessellumExport.h>

#include <QMutex>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <vector>

namespace Tessellum::Notification::utils {

/*!
 * Does the repository work of one socket's owner away from the event thread: one thread, in the order of the
 * posts. Any thread may call.
 *
 * The mutex makes the test for the end and the entry of a step one; it is not held while a step runs.
 */
class TESSELLUM_EXPORT FrameWorker
{
public:
    FrameWorker();
    /*! Drops what is queued and does not wait for the running step. */
    ~FrameWorker();
    Q_DISABLE_COPY_MOVE(FrameWorker)

    /*! False, and \a step is freed, after end(). What a step throws ends there with a line. */
    bool post(std::function<void()> step);
    /*! Drops what is queued and takes nothing more; the running step goes on. */
    void end();
    bool hasEnded() const;
    /*! Waits until no step runs; not for a step itself. Call end() first and have the pool ended, for which a
     * step may wait. */
    void waitForRunning();

private:
    mutable QMutex mutex;
    bool ended = false;
    QThreadPool *threads; // owned; outlives this while a step runs
};

/*!
 * The workers of one repository, so that its stop ends them. Any thread may call; the mutex guards the list
 * and is not held across a wait.
 */
class TESSELLUM_EXPORT FrameWorkers
{
public:
    /*! Null while the repository is stopped. */
    std::shared_ptr<FrameWorker> make();
    void open();
    /*! Ends all workers; no further one is made until open(). */
    void close();
    /*! Waits for the steps that still run after close(). */
    void waitForRunning();

private:
    std::vector<std::shared_ptr<FrameWorker>> living();

    QMutex mutex;
    bool isOpen = false;
    std::vector<std::weak_ptr<FrameWorker>> workers;
};

} // namespace Tessellum::Notification::utils
