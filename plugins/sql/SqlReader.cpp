#include "SqlReader.h"

#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>

#include <future>

namespace Tessellum::Plugins::Sql {

using Shared::Logging::FrameworkLog;

namespace {

constexpr qint64 ReopenAfter = 500; // milliseconds

} // namespace

SqlReader::SqlReader(const SqlDialect &sqlDialect, const QVariant &mediumLocation, const QString &storageName)
    : dialect(sqlDialect)
    , location(mediumLocation)
    , name(storageName)
{ }

SqlReader::~SqlReader()
{
    stop();
}

QString SqlReader::start()
{
    std::promise<QString> opened;
    std::future<QString> result = opened.get_future();
    thread = std::thread([this, &opened] {
        SqlConnection connection(dialect, location);
        failing = false;
        const bool works = openConnection(connection);
        {
            const QMutexLocker lock(&mutex);
            running = works;
        }
        opened.set_value(works ? QString() : connection.lastError().text);
        if (works)
            work(connection);
    });
    const QString text = result.get();
    if (!text.isEmpty())
        stop();
    return text;
}

void SqlReader::stop()
{
    {
        const QMutexLocker lock(&mutex);
        running = false;
        for (const auto &request : requests)
            request->ended = true;
        requests.clear();
        wanted.wakeAll();
        answered.wakeAll();
    }
    if (thread.joinable())
        thread.join();
}

bool SqlReader::read(const Job &job)
{
    const auto request = std::make_shared<Request>();
    request->job = job;
    QMutexLocker lock(&mutex);
    if (!running)
        return false;
    requests.push_back(request);
    wanted.wakeOne();
    while (!request->ended)
        answered.wait(&mutex);
    return request->result;
}

void SqlReader::work(SqlConnection &connection)
{
    QMutexLocker lock(&mutex);
    for (;;) {
        while (running && requests.empty())
            wanted.wait(&mutex);
        if (!running)
            return;
        const std::shared_ptr<Request> request = requests.front();
        requests.pop_front();
        lock.unlock();
        const bool result = runJob(connection, request->job);
        lock.relock();
        request->result = result;
        request->ended = true;
        answered.wakeAll();
    }
}

bool SqlReader::runJob(SqlConnection &connection, const Job &job)
{
    const SqlConnection::Waiting waiting(connection);
    bool works = false;
    if (connection.isOpen() || reopen(connection)) {
        works = job(connection);
        // Most often the server was only started anew: then nobody need hear of it.
        if (!works && dialect.needsReconnect(connection)) {
            connection.close();
            lastOpening.invalidate();
            works = reopen(connection) && job(connection);
        }
    }
    tell(works, connection);
    return works;
}

// Not too often: every caller would wait for it.
bool SqlReader::reopen(SqlConnection &connection)
{
    if (lastOpening.isValid() && !lastOpening.hasExpired(ReopenAfter))
        return false;
    if (openConnection(connection))
        return true;
    const QString text = connection.lastError().text;
    connection.close();
    return connection.fail(text);
}

bool SqlReader::openConnection(SqlConnection &connection)
{
    const SqlConnection::Waiting waiting(connection);
    const bool works = connection.open() && dialect.startSession(connection, location, false);
    lastOpening.start();
    return works;
}

// Once an outage.
void SqlReader::tell(bool works, const SqlConnection &connection)
{
    if (!works && !failing) {
        FrameworkLog().warning() << "SqlReader::tell() storage '" << name
                                 << "' cannot be read: " << connection.lastError().text;
    }
    failing = !works;
}

} // namespace Tessellum::Plugins::Sql
