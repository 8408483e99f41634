#include "SqlSchema.h"
#include "SqlWriter.h"

#include <shared/logging/FrameworkLog.h>

namespace Tessellum::Plugins::Sql {

using Shared::Logging::FrameworkLog;

SqlWriter::SqlWriter(const Medium &writtenMedium, WriteQueue &writeQueue, KnownElements &knownElements,
                     ReadAhead &readAhead)
    : medium(writtenMedium)
    , queue(writeQueue)
    , known(knownElements)
    , ahead(readAhead)
{ }

SqlWriter::~SqlWriter()
{
    join();
}

QString SqlWriter::start()
{
    std::promise<QString> opened;
    std::future<QString> result = opened.get_future();
    thread = std::thread([this, &opened] {
        SqlConnection connection(medium.dialect, medium.location);
        failing = false;
        if (!openMedium(connection)) {
            opened.set_value(connection.lastError().text);
            return;
        }
        queue.open();
        opened.set_value(QString());
        work(connection);
    });
    const QString text = result.get();
    if (!text.isEmpty())
        join();
    return text;
}

void SqlWriter::join()
{
    if (thread.joinable())
        thread.join();
}

bool SqlWriter::openMedium(SqlConnection &connection)
{
    const SqlConnection::Waiting waiting(connection);
    return connection.open() && medium.dialect.startSession(connection, medium.location, medium.synchronous)
        && PrepareSchema(connection, medium.dialect);
}

void SqlWriter::work(SqlConnection &connection)
{
    for (;;) {
        const WriteGroup &group = queue.next();
        if (group.empty())
            return;
        const WriteQueue::Outcome outcome = writeGroup(connection, group);
        for (size_t index = 0; index < outcome.done; ++index) {
            if (index == 0 || group[index].entry != group[index - 1].entry)
                ahead.invalidate(group[index].entry);
        }
        tell(outcome.error);
        queue.finish(outcome);
    }
}

WriteQueue::Outcome SqlWriter::writeGroup(SqlConnection &connection, const WriteGroup &group)
{
    const SqlConnection::Waiting waiting(connection);
    WriteQueue::Outcome outcome;
    if (!connection.isOpen() && !reopen(connection)) {
        outcome.error = connection.lastError();
        return outcome;
    }
    if (writeRange(connection, group.data(), group.data() + group.size())) {
        outcome.done = group.size();
        return outcome;
    }
    outcome.error = connection.lastError();
    if (!outcome.error.isOutage) {
        outcome.error = MediumError();
        writeOneByOne(connection, group, outcome);
    } else if (medium.dialect.needsReconnect(connection)) {
        // Most often the server was only started anew: then nobody need hear of it.
        if (reopen(connection) && writeRange(connection, group.data(), group.data() + group.size()))
            return {group.size(), {}, {}};
        outcome.error = connection.lastError();
    }
    return outcome;
}

// One transaction.
bool SqlWriter::writeRange(SqlConnection &connection, const Write *first, const Write *last)
{
    int missed = 0;
    const bool written = connection.begin() && medium.dialect.write(connection, known, first, last, missed)
        && connection.commit();
    if (!written) {
        connection.rollback();
        medium.dialect.rolledBack(known, first, last);
    } else if (missed == 0) {
        medium.dialect.committed(known, first, last);
    } else {
        // What is known of these entries is not as the medium has it.
        known.forget(first, last);
        FrameworkLog().warning() << "SqlWriter::writeRange() storage '" << medium.name << "': " << missed
                                 << " writes found their entry or element removed";
    }
    return written;
}

void SqlWriter::writeOneByOne(SqlConnection &connection, const WriteGroup &group,
                              WriteQueue::Outcome &outcome)
{
    for (; outcome.done < group.size(); ++outcome.done) {
        const Write &write = group[outcome.done];
        if (writeRange(connection, &write, &write + 1))
            continue;
        const MediumError error = connection.lastError();
        if (error.isOutage) {
            outcome.error = error;
            return;
        }
        FrameworkLog().warning() << "SqlWriter::writeOneByOne() storage '" << medium.name
                                 << "' cannot hold a value of entry " << write.entry << ": " << error.text;
        outcome.dropped.push_back(outcome.done);
    }
}

bool SqlWriter::reopen(SqlConnection &connection)
{
    if (openMedium(connection))
        return true;
    const MediumError error = connection.lastError();
    connection.close();
    connection.fail(error.text);
    return false;
}

// Once an outage.
void SqlWriter::tell(const MediumError &error)
{
    if (error && !failing) {
        FrameworkLog().warning() << "SqlWriter::tell() storage '" << medium.name
                                 << "' cannot be written: " << error.text;
    } else if (!error && failing) {
        FrameworkLog().log() << "SqlWriter::tell() storage '" << medium.name << "' can be written again";
    }
    failing = bool(error);
}

} // namespace Tessellum::Plugins::Sql
