#include "AnswerWatch.h"

namespace Tessellum::Plugins::Sql {

using Clock = std::chrono::steady_clock;

AnswerWatch::AnswerWatch(std::chrono::seconds longestWait)
    : patience(longestWait)
    , thread([this] { work(); })
{ }

AnswerWatch::~AnswerWatch()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ending = true;
    }
    wake.notify_all();
    thread.join();
}

void AnswerWatch::setSocket(int descriptor)
{
    const std::lock_guard<std::mutex> lock(mutex);
    socket.reset(descriptor);
    deadline = Clock::now() + patience;
}

void AnswerWatch::begin()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (depth++ == 0)
        deadline = Clock::now() + patience;
}

void AnswerWatch::end()
{
    const std::lock_guard<std::mutex> lock(mutex);
    --depth;
}

void AnswerWatch::renew()
{
    const std::lock_guard<std::mutex> lock(mutex);
    deadline = Clock::now() + patience;
}

// Whoever begins wakes nobody: this thread looks in time, since no deadline is closer than its next look.
void AnswerWatch::work()
{
    std::unique_lock<std::mutex> lock(mutex);
    while (!ending) {
        const Clock::time_point now = Clock::now();
        if (depth > 0 && socket.isValid() && now >= deadline) {
            socket.shutDown();
            deadline = now + patience;
        }
        wake.wait_until(lock, depth > 0 ? deadline : now + patience);
    }
}

} // namespace Tessellum::Plugins::Sql
