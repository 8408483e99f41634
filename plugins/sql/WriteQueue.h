#pragma once

#include "PendingWrites.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QMutex>
#include <QWaitCondition>

#include <deque>

namespace Tessellum::Plugins::Sql {

/*! How the writes of a storage are taken and grouped. */
struct QueuePolicy
{
    int limit = 20000; /*!< The most writes on their way. */
    qint64 byteLimit = 64 << 20; /*!< The most raw bytes on their way. */
    bool collectsInOutage = false; /*!< Whether writes are taken, up to the limit, while the medium fails. */
    bool synchronous = false; /*!< Each write returns with its commit. */
};

/*!
 * The writes on their way to the medium, in their order, and what they make of it.
 *
 * A write is taken by put() and leaves with the commit of its group. While the medium works a full queue lets
 * put() wait, which ends with the next commit or failure. While it fails the writes that were taken stay, and
 * put() answers by the policy: it collects up to the limit, or asks the writer for one attempt and says false
 * where that fails as well. A synchronous write that fails leaves the queue at once.
 *
 * Threads: any, next() and finish() the writer's only. The mutex guards all fields; nothing is logged or
 * called out with it held.
 */
class WriteQueue
{
public:
    enum class Result { Taken, Refused };
    /*! How a group came out: the first \a done writes are in the medium, but for those that it can't hold. */
    struct Outcome
    {
        size_t done = 0;
        std::vector<size_t> dropped; /*!< Ascending, each below done. */
        MediumError error; /*!< Why the rest is not there. */
    };

    explicit WriteQueue(const QueuePolicy &queuePolicy)
        : policy(queuePolicy)
    { }

    void open();
    /*! No more writes are taken; next() hands out what is left. */
    void close();

    /*! Takes \a write. Refused: nothing has changed, and \a reason says why where that is to be told. */
    Result put(Write write, QString &reason);

    PendingWrites::EntryView entry(const QString &uuid) const;
    PendingWrites::ElementView element(const QString &entryUuid, const QString &elementUuid) const;
    QStringList createdElements(const QString &entryUuid) const;
    QHash<QString, PendingWrites::EntryView> changedEntries() const;
    size_t size() const;

    /*! The writes to be written now, after a wait for a group or, in an outage, for the next attempt. Empty:
     * the queue is closed, and nothing is left or the medium failed in the last attempt. */
    const WriteGroup &next();
    void finish(const Outcome &outcome);

private:
    bool isFull() const;
    bool hasGroup() const;
    bool waitForAttempt(QString &reason);
    Result refuse(QString &reason);
    Result waitForCommit(const std::shared_ptr<WriteTicket> &ticket, QString &reason);
    void take(Write &&write);
    void fillGroup();
    void endTicket(const Write &write, bool written);
    void rebuildPending();

    const QueuePolicy policy;
    mutable QMutex mutex;
    QWaitCondition writerWork;
    QWaitCondition progress; // of the writer
    std::deque<Write> waiting;
    WriteGroup group; // with the writer; before those that wait
    PendingWrites pending;
    QElapsedTimer oldest; // since when the first of those that wait does
    quint64 lastSequence = 0;
    qint64 bytes = 0;
    quint64 attempts = 0;
    bool opened = false;
    bool attemptWanted = false;
    bool refusalTold = false;
    bool lastAttemptMade = false; // after close()
    int retryDelay = 0; // milliseconds; 0: the medium works, or nothing is left of what failed
    QDeadlineTimer retryAt;
    QString outage;
};

} // namespace Tessellum::Plugins::Sql
