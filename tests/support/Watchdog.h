#pragma once

#include <QSemaphore>
#include <QtGlobal>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace TestSupport {

/*! Ends the process with a message if the test does not come on for a minute. */
class Watchdog
{
public:
    Watchdog()
        : thread([this] { watch(); })
    { }
    ~Watchdog()
    {
        ended.release();
        thread.join();
    }
    Q_DISABLE_COPY_MOVE(Watchdog)

    void progress(const char *where)
    {
        place = where;
        ++steps;
    }

private:
    void watch()
    {
        constexpr int longestStepMs = 60000;
        for (int seen = steps; !ended.tryAcquire(1, longestStepMs); seen = steps) {
            if (seen == steps) {
                std::fprintf(stderr, "the test hangs after: %s\n", place.load());
                std::abort();
            }
        }
    }

    std::atomic<const char *> place{"begin"};
    std::atomic<int> steps{0};
    QSemaphore ended;
    std::thread thread;
};

/*! How long a stress test works: 5 s, or what the environment says. */
inline int StressSeconds()
{
    bool ok = false;
    const int seconds = qEnvironmentVariableIntValue("TESSELLUM_STRESS_SECONDS", &ok);
    return ok ? seconds : 5;
}

} // namespace TestSupport
