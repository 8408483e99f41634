#include <notification/utils/ExceptionBarrier.h>
#include <notification/utils/FrameWorker.h>

#include <QMutexLocker>

#include <algorithm>
#include <utility>

namespace Tessellum::Notification::utils {

namespace {

/*! The pool whose step the thread runs. */
thread_local const QThreadPool *currentThreads = nullptr;

} // namespace

FrameWorker::FrameWorker()
    : threads(std::make_unique<QThreadPool>().release())
{
    threads->setMaxThreadCount(1);
}

FrameWorker::~FrameWorker()
{
    end();
    if (currentThreads != threads && threads->waitForDone(0)) {
        delete threads;
        return;
    }
    // Neither a step nor the event thread may wait for the step that runs: Qt's global pool does.
    QThreadPool::globalInstance()->start([left = threads] { delete left; });
}

bool FrameWorker::post(std::function<void()> step)
{
    const QMutexLocker locker(&mutex);
    if (ended)
        return false;
    threads->start([step = std::move(step), own = threads]() mutable {
        currentThreads = own;
        RunGuarded("FrameWorker", step);
        // What the step held goes before the next one begins.
        step = nullptr;
        currentThreads = nullptr;
    });
    return true;
}

void FrameWorker::end()
{
    {
        const QMutexLocker locker(&mutex);
        ended = true;
    }
    threads->clear();
}

bool FrameWorker::hasEnded() const
{
    const QMutexLocker locker(&mutex);
    return ended;
}

void FrameWorker::waitForRunning()
{
    threads->waitForDone();
}

std::shared_ptr<FrameWorker> FrameWorkers::make()
{
    const QMutexLocker locker(&mutex);
    if (!isOpen)
        return nullptr;
    workers.erase(
        std::remove_if(workers.begin(), workers.end(), [](const auto &worker) { return worker.expired(); }),
        workers.end());
    const auto worker = std::make_shared<FrameWorker>();
    workers.emplace_back(worker);
    return worker;
}

void FrameWorkers::open()
{
    const QMutexLocker locker(&mutex);
    isOpen = true;
}

void FrameWorkers::close()
{
    {
        const QMutexLocker locker(&mutex);
        isOpen = false;
    }
    for (const auto &worker : living())
        worker->end();
}

void FrameWorkers::waitForRunning()
{
    for (const auto &worker : living())
        worker->waitForRunning();
}

std::vector<std::shared_ptr<FrameWorker>> FrameWorkers::living()
{
    const QMutexLocker locker(&mutex);
    std::vector<std::shared_ptr<FrameWorker>> found;
    for (const auto &entry : workers) {
        if (auto worker = entry.lock())
            found.push_back(std::move(worker));
    }
    return found;
}

} // namespace Tessellum::Notification::utils
