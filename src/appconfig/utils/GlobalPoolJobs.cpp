#include <appconfig/utils/GlobalPoolJobs.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutex>
#include <QThreadPool>
#include <QWaitCondition>

namespace Tessellum::AppConfig::utils {

namespace {

struct Runs
{
    QMutex mutex;
    QWaitCondition noneRunning;
    quint64 number = 1;
    int running = 0;
};

Runs &TheRuns()
{
    static Runs *const runs = new Runs; // reachable to the end: a job may outlive the destruction of statics
    return *runs;
}

bool Enter(quint64 run)
{
    const QMutexLocker locker(&TheRuns().mutex);
    if (TheRuns().number != run)
        return false;
    ++TheRuns().running;
    return true;
}

void RunJob(quint64 run, const std::function<void()> &job)
{
    const GlobalPoolJobs::Token token(run);
    if (!token)
        return;
    try {
        job();
    } catch (...) {
        Shared::Logging::FrameworkLog().critical() << "GlobalPoolJobs::Start() catched exception";
    }
}

} // namespace

GlobalPoolJobs::Token::Token(quint64 run)
    : valid(Enter(run))
{ }

GlobalPoolJobs::Token::~Token()
{
    if (!valid)
        return;
    const QMutexLocker locker(&TheRuns().mutex);
    if (--TheRuns().running == 0)
        TheRuns().noneRunning.wakeAll();
}

void GlobalPoolJobs::Start(std::function<void()> job)
{
    QThreadPool::globalInstance()->start([run = CurrentRun(), work = std::move(job)] { RunJob(run, work); });
}

quint64 GlobalPoolJobs::CurrentRun()
{
    const QMutexLocker locker(&TheRuns().mutex);
    return TheRuns().number;
}

void GlobalPoolJobs::BeginRun()
{
    const QMutexLocker locker(&TheRuns().mutex);
    ++TheRuns().number;
}

void GlobalPoolJobs::EndRunAndWait()
{
    const QMutexLocker locker(&TheRuns().mutex);
    ++TheRuns().number;
    while (TheRuns().running > 0)
        TheRuns().noneRunning.wait(&TheRuns().mutex);
}

} // namespace Tessellum::AppConfig::utils
