#pragma once

#include <QSemaphore>

#include <thread>
#include <vector>

namespace TestSupport {

// Runs work(0), work(1) and so on at once, each in a thread of its own, until all have ended.
template <class Work>
void InThreads(int count, const Work &work)
{
    QSemaphore go;
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&work, &go, number] {
            go.acquire();
            work(number);
        });
    }
    go.release(count);
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace TestSupport
