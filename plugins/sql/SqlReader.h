#pragma once

#include "SqlDialect.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QString>
#include <QVariant>
#include <QWaitCondition>

#include <deque>
#include <functional>
#include <memory>
#include <thread>

namespace Tessellum::Plugins::Sql {

/*!
 * The thread that reads: a connection belongs to the thread that opened it, so callers hand it what they want
 * read and wait.
 *
 * Threads: any, start() and stop() one at a time. The mutex guards the jobs; they run without it.
 */
class SqlReader
{
public:
    /*! Reads something; false for a failure, of which the connection tells. */
    using Job = std::function<bool(SqlConnection &)>;

    SqlReader(const SqlDialect &sqlDialect, const QVariant &mediumLocation, const QString &storageName);
    ~SqlReader();

    /*! Opens a connection; the text of what went wrong, or an empty one. */
    QString start();
    /*! Ends the thread; what waits fails. */
    void stop();
    /*! Runs \a job on the thread and waits. False where it fails, with a WARNING once an outage, or where the
     * thread does not run. */
    bool read(const Job &job);

private:
    struct Request
    {
        Job job;
        bool ended = false;
        bool result = false;
    };

    void work(SqlConnection &connection);
    bool runJob(SqlConnection &connection, const Job &job);
    bool reopen(SqlConnection &connection);
    bool openConnection(SqlConnection &connection);
    void tell(bool works, const SqlConnection &connection);

    const SqlDialect &dialect;
    const QVariant location;
    const QString name;
    std::thread thread;
    QMutex mutex;
    QWaitCondition wanted;
    QWaitCondition answered;
    std::deque<std::shared_ptr<Request>> requests;
    bool running = false;
    bool failing = false; // of the thread alone, as is what follows
    QElapsedTimer lastOpening;
};

} // namespace Tessellum::Plugins::Sql
