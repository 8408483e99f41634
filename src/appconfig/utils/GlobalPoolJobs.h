#pragma once

#include <QtGlobal>

#include <functional>

namespace Tessellum::AppConfig::utils {

/*!
 * The jobs that the configuration puts on the process's global thread pool, which nobody can take back.
 *
 * Each carries the number of the repository's run that it was put there in, and does nothing in another: a
 * job that is late by a stop must not start tasks on the next tree. Threads: any. One mutex guards the number
 * and the count of the running jobs; it is not held while a job runs.
 */
class GlobalPoolJobs
{
public:
    /*! Puts \a job there for the present run. An exception in it is logged and ends there. */
    static void Start(std::function<void()> job);
    /*! Opens a new run: what was put there before does nothing any more. */
    static void BeginRun();
    /*! Closes the run and waits for the jobs that run; not to be called by one of them. */
    static void EndRunAndWait();

    /*! What a job holds while it works. */
    class Token
    {
    public:
        /*! Valid if \a run is the present one. */
        explicit Token(quint64 run);
        ~Token();
        Q_DISABLE_COPY(Token)
        explicit operator bool() const { return valid; }

    private:
        const bool valid;
    };

    /*! The number of the present run. */
    static quint64 CurrentRun();
};

} // namespace Tessellum::AppConfig::utils
