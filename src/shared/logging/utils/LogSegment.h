#pragma once

#include <QSharedMemory>
#include <QString>

namespace Shared::Logging::utils {

/*! What a segment holds: 16 bytes in native layout. The address means something to that process alone. */
struct SegmentRecord
{
    qint64 processId;
    quint64 address;
};
static_assert(sizeof(SegmentRecord) == 16);

/*!
 * A named piece of shared memory with one record. Used inside the log section alone, which does for the lock
 * that comes with QSharedMemory: that one's semaphore may stay at 0 for ever when processes come and go at
 * the same time. Where another user owns the name, a name with this user's number takes its place.
 */
class LogSegment
{
public:
    explicit LogSegment(const QString &key);

    /*! Attaches to the segment where it exists. */
    bool attach() { return reach(false); }
    /*! Attaches to the segment or creates it. False: there is none for this process. */
    bool open() { return reach(true); }
    /*! Lets go of the segment, which ends with its last user. True when this was the last. */
    bool close();

    /*!
     * The object that accept() finds at the address in a record of this process, null when there is none.
     * Attached.
     */
    template <typename Object, typename Accept>
    Object *find(qint64 processId, const Accept &accept) const
    {
        const SegmentRecord record = read();
        return record.processId == processId ? accept(record.address) : nullptr;
    }

    /*! What find() yields; where that is nothing, what make() yields, whose address is entered. Attached. */
    template <typename Object, typename Accept, typename Make>
    Object *findOrMake(qint64 processId, const Accept &accept, const Make &make)
    {
        Object *object = find<Object>(processId, accept);
        if (!object) {
            object = make();
            write({processId, static_cast<quint64>(reinterpret_cast<quintptr>(object))});
        }
        return object;
    }

private:
    bool reach(bool create);
    bool reachName(const QString &name, bool create);
    SegmentRecord read() const;
    void write(const SegmentRecord &record);

    QString key;
    QSharedMemory memory;
};

} // namespace Shared::Logging::utils
