#pragma once

#include <QSemaphore>

#include <thread>
#include <vector>

namespace TestSupport {

// Runs work(0), work(1) and so on at once, each in a thread of its own, until all have ended. Ends the
// process if one of them hangs.
template <class Work>
void InThreads(int count, const Work &work)
{
    QSemaphore go;
    QSemaphore done;
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&, number] {
            go.acquire();
            work(number);
            done.release();
        });
    }
    go.release(count);
    if (!done.tryAcquire(count, 100000))
        qFatal("a thread of the test hangs");
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace TestSupport
