#pragma once

#include "platform/SocketHandle.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Tessellum::Plugins::Sql {

/*!
 * Ends the waits for a server that hangs and yet keeps its connection: the engine's own library would wait
 * without end. A thread shuts the connection's socket when the server has given no answer for some time; what
 * waits for it then fails, as if the server had gone.
 *
 * Threads: that of the connection, and the own one. The mutex guards all fields.
 */
class AnswerWatch
{
public:
    explicit AnswerWatch(std::chrono::seconds longestWait);
    ~AnswerWatch();
    AnswerWatch(const AnswerWatch &) = delete;
    AnswerWatch &operator=(const AnswerWatch &) = delete;

    /*! The socket of the connection; -1 for none. It stays the connection's own. */
    void setSocket(int descriptor);
    /*! From now on the server is waited for; calls nest. */
    void begin();
    void end();
    /*! The server has answered, and is asked again. */
    void renew();

private:
    void work();

    const std::chrono::seconds patience;
    std::mutex mutex;
    std::condition_variable wake;
    std::chrono::steady_clock::time_point deadline;
    int depth = 0;
    SocketHandle socket;
    bool ending = false;
    std::thread thread;
};

} // namespace Tessellum::Plugins::Sql
