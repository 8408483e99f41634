#include "WriteQueue.h"

#include <QMutexLocker>

#include <algorithm>

namespace Tessellum::Plugins::Sql {

namespace {

constexpr size_t GroupSize = 1000;
constexpr qint64 GroupBytes = 16 << 20;
constexpr int GroupTime = 50; // milliseconds
constexpr int FirstRetry = 100; // milliseconds
constexpr int LastRetry = 2000; // milliseconds

} // namespace

void WriteQueue::open()
{
    const QMutexLocker lock(&mutex);
    opened = true;
    lastAttemptMade = false;
    refusalTold = false;
    retryDelay = 0;
    outage.clear();
}

void WriteQueue::close()
{
    const QMutexLocker lock(&mutex);
    opened = false;
    writerWork.wakeAll();
    progress.wakeAll();
}

WriteQueue::Result WriteQueue::put(Write write, QString &reason)
{
    QMutexLocker lock(&mutex);
    while (opened && isFull() && retryDelay == 0)
        progress.wait(&mutex);
    if (!opened) {
        reason = QStringLiteral("the storage is not connected");
        return Result::Refused;
    }
    if (policy.synchronous) {
        const auto ticket = std::make_shared<WriteTicket>();
        write.ticket = ticket;
        take(std::move(write));
        return waitForCommit(ticket, reason);
    }
    if (retryDelay > 0) {
        if (policy.collectsInOutage ? isFull() : !waitForAttempt(reason))
            return refuse(reason);
    }
    take(std::move(write));
    return Result::Taken;
}

// Whether the medium works again. With the mutex held, which the wait gives away.
bool WriteQueue::waitForAttempt(QString &reason)
{
    // An attempt that runs already may have failed before this call came.
    const quint64 wanted = attempts + (group.empty() ? 1 : 2);
    while (opened && retryDelay > 0 && attempts < wanted) {
        attemptWanted = true;
        writerWork.wakeAll();
        progress.wait(&mutex);
    }
    if (!opened)
        reason = QStringLiteral("the storage is not connected");
    return opened && retryDelay == 0;
}

// Says why once an outage.
WriteQueue::Result WriteQueue::refuse(QString &reason)
{
    if (!refusalTold && reason.isEmpty())
        reason = outage;
    refusalTold = true;
    return Result::Refused;
}

WriteQueue::Result WriteQueue::waitForCommit(const std::shared_ptr<WriteTicket> &ticket, QString &reason)
{
    while (!ticket->ended)
        progress.wait(&mutex);
    return ticket->written ? Result::Taken : refuse(reason);
}

void WriteQueue::take(Write &&write)
{
    write.sequence = ++lastSequence;
    bytes += write.bytes();
    pending.add(write);
    if (waiting.empty())
        oldest.start();
    waiting.push_back(std::move(write));
    if (waiting.size() == 1 || waiting.size() == GroupSize || policy.synchronous)
        writerWork.wakeAll();
}

bool WriteQueue::isFull() const
{
    return waiting.size() + group.size() >= size_t(policy.limit) || bytes >= policy.byteLimit;
}

bool WriteQueue::hasGroup() const
{
    if (!group.empty())
        return true; // left by an earlier connection
    return !waiting.empty()
        && (policy.synchronous || waiting.size() >= GroupSize || bytes >= GroupBytes
            || oldest.elapsed() >= GroupTime);
}

const WriteGroup &WriteQueue::next()
{
    static const WriteGroup nothing;
    QMutexLocker lock(&mutex);
    while (opened && !attemptWanted) {
        if (retryDelay > 0) {
            // What is left of a failed group is tried again when the time has come.
            if (!writerWork.wait(&mutex, retryAt))
                break;
        } else if (hasGroup()) {
            break;
        } else if (waiting.empty()) {
            writerWork.wait(&mutex);
        } else {
            writerWork.wait(&mutex, QDeadlineTimer(std::max<qint64>(1, GroupTime - oldest.elapsed())));
        }
    }
    if (!opened && retryDelay > 0) {
        if (lastAttemptMade)
            return nothing;
        lastAttemptMade = true;
    }
    attemptWanted = false;
    fillGroup();
    return group;
}

void WriteQueue::fillGroup()
{
    qint64 groupBytes = 0;
    for (const Write &write : group)
        groupBytes += write.bytes();
    while (!waiting.empty() && group.size() < GroupSize && groupBytes < GroupBytes) {
        groupBytes += waiting.front().bytes();
        group.push_back(std::move(waiting.front()));
        waiting.pop_front();
    }
    oldest.start();
}

void WriteQueue::finish(const Outcome &outcome)
{
    WriteGroup written; // dies after the mutex is left
    const QMutexLocker lock(&mutex);
    ++attempts;
    const bool failed = bool(outcome.error);
    const bool drops = !outcome.dropped.empty() || (failed && policy.synchronous);
    const size_t leaving = failed && policy.synchronous ? group.size() : outcome.done;
    for (size_t index = 0; index < leaving; ++index) {
        const bool isWritten = index < outcome.done
            && !std::binary_search(outcome.dropped.begin(), outcome.dropped.end(), index);
        bytes -= group[index].bytes();
        if (!drops)
            pending.settle(group[index]);
        endTicket(group[index], isWritten);
    }
    if (leaving == group.size())
        written.swap(group);
    else
        group.erase(group.begin(), group.begin() + std::ptrdiff_t(leaving));
    if (drops)
        rebuildPending();
    if (failed)
        outage = outcome.error.text;
    if (failed && !group.empty()) {
        retryDelay = retryDelay == 0 ? FirstRetry : std::min(retryDelay * 2, LastRetry);
        retryAt.setRemainingTime(retryDelay);
    } else if (!failed) {
        retryDelay = 0;
        refusalTold = false;
    }
    progress.wakeAll();
}

void WriteQueue::endTicket(const Write &write, bool written)
{
    if (!write.ticket)
        return;
    write.ticket->ended = true;
    write.ticket->written = written;
}

// Where a write is taken out of the middle.
void WriteQueue::rebuildPending()
{
    pending.clear();
    for (const Write &write : group)
        pending.add(write);
    for (const Write &write : waiting)
        pending.add(write);
}

PendingWrites::EntryView WriteQueue::entry(const QString &uuid) const
{
    const QMutexLocker lock(&mutex);
    return pending.entry(uuid);
}

PendingWrites::ElementView WriteQueue::element(const QString &entryUuid, const QString &elementUuid) const
{
    const QMutexLocker lock(&mutex);
    return pending.element(entryUuid, elementUuid);
}

QStringList WriteQueue::createdElements(const QString &entryUuid) const
{
    const QMutexLocker lock(&mutex);
    return pending.createdElements(entryUuid);
}

QHash<QString, PendingWrites::EntryView> WriteQueue::changedEntries() const
{
    const QMutexLocker lock(&mutex);
    return pending.changedEntries();
}

size_t WriteQueue::size() const
{
    const QMutexLocker lock(&mutex);
    return group.size() + waiting.size();
}

} // namespace Tessellum::Plugins::Sql
