#pragma once

#include "KnownElements.h"
#include "ReadAhead.h"
#include "SqlDialect.h"
#include "WriteQueue.h"

#include <QString>
#include <QVariant>

#include <future>
#include <thread>

namespace Tessellum::Plugins::Sql {

/*!
 * The thread that brings the queue's writes to the medium, a group at a time, each in one transaction.
 *
 * A group that fails since the medium does is kept, and tried again as the queue says. A write that the
 * medium cannot hold is dropped with a WARNING, so that it holds up no others. A group whose commit was not
 * confirmed is written once more: each write can be repeated.
 */
class SqlWriter
{
public:
    struct Medium
    {
        const SqlDialect &dialect;
        QVariant location;
        QString name; /*!< For messages. */
        bool synchronous;
    };

    SqlWriter(const Medium &writtenMedium, WriteQueue &writeQueue, KnownElements &knownElements,
              ReadAhead &readAhead);
    ~SqlWriter();

    /*! Opens the medium, makes its tables and starts to write; the text of what went wrong, or an empty one.
     * Not while it runs. */
    QString start();
    /*! Waits until the queue, which is closed, has been written. */
    void join();

private:
    void work(SqlConnection &connection);
    WriteQueue::Outcome writeGroup(SqlConnection &connection, const WriteGroup &group);
    bool writeRange(SqlConnection &connection, const Write *first, const Write *last);
    void writeOneByOne(SqlConnection &connection, const WriteGroup &group, WriteQueue::Outcome &outcome);
    bool reopen(SqlConnection &connection);
    bool openMedium(SqlConnection &connection);
    void tell(const MediumError &error);

    const Medium medium;
    WriteQueue &queue;
    KnownElements &known;
    ReadAhead &ahead;
    std::thread thread;
    bool failing = false; // of the thread alone
};

} // namespace Tessellum::Plugins::Sql
