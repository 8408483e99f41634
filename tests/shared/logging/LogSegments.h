#pragma once

#include <QFile>
#include <QSharedMemory>
#include <QStringList>
#include <QSystemSemaphore>
#include <QTemporaryDir>

#include <cstring>
#include <support/Literals.h>

/*! The named objects of the log as any process sees them. */
namespace LogSegments {

inline const QString semaphoreKey = "Shared::Logging::LogHandler::LogHandler"_s;
inline const QString sinkKey = "Shared::Logging::LogHandler::LogHandler::CustomSinkRepository"_s;
inline const QString filterKey = "Shared::Logging::LogHandler::LogHandler::CustomFilterRepository"_s;
inline const QString contextKey = "Shared::Logging::LogHandler::LogContext"_s;
inline const QStringList segmentKeys{sinkKey, filterKey, contextKey};

/*!
 * The objects belong to files in the directory for temporary files. With one of its own, this process and
 * its children have objects that no other process on the machine touches. To be made before the first
 * message.
 */
class OwnObjects
{
public:
    OwnObjects()
    {
        QFile::setPermissions(directory.path(), QFile::Permissions(0x7777)); // for children of other users
        qputenv("TMPDIR", QFile::encodeName(directory.path()));
    }

private:
    QTemporaryDir directory;
};

struct Record
{
    qint64 processId;
    quint64 address;
};

/*! Holds a segment and reads and writes its record. */
class Segment
{
public:
    explicit Segment(const QString &key)
        : memory(key)
    {
        held = memory.attach() || memory.create(sizeof(Record));
    }

    bool isHeld() const { return held && memory.size() == sizeof(Record); }
    Record read() const
    {
        Record record;
        std::memcpy(&record, memory.constData(), sizeof(record));
        return record;
    }
    void write(const Record &record) { std::memcpy(memory.data(), &record, sizeof(record)); }

private:
    QSharedMemory memory;
    bool held = false;
};

inline bool Exists(const QString &key)
{
    QSharedMemory memory(key);
    return memory.attach(QSharedMemory::ReadOnly);
}

/*!
 * Removes what a process that was aborted or killed has left: the last to let go of such an object removes
 * it.
 */
inline void RemoveAll()
{
    for (const QString &key : segmentKeys)
        Exists(key);
    for (const QString &key : QStringList{semaphoreKey} + segmentKeys)
        QSystemSemaphore(key, 1, QSystemSemaphore::Create);
}

} // namespace LogSegments
