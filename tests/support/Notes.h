#pragma once

#include <QMutex>
#include <QSemaphore>
#include <QStringList>

namespace TestSupport {

// What handlers note on threads of their own.
class Notes
{
public:
    void add(const QString &note)
    {
        QMutexLocker locker(&mutex);
        notes.append(note);
        added.release();
    }

    // All notes in the order of the alphabet, once there are \a count more; nothing if they do not come.
    QStringList sorted(int count)
    {
        if (!added.tryAcquire(count, 60000))
            return {};
        QMutexLocker locker(&mutex);
        notes.sort();
        return notes;
    }

private:
    QMutex mutex;
    QStringList notes; // guarded by mutex
    QSemaphore added;
};

} // namespace TestSupport
