#pragma once

#include <shared/logging/utils/LogSemaphore.h>

#include <QMutex>
#include <QString>

#include <atomic>
#include <functional>

namespace Shared::Logging::utils {

/*! The thread inside the log section, null when there is none. */
using SectionOwner = std::atomic<Qt::HANDLE>;

/*!
 * What a thread holds inside the log section: the mutex, which guards the use of the semaphore by the threads
 * of this copy of the log code, and then the semaphore, which keeps all processes apart.
 */
class LogLock
{
public:
    class Section;

    explicit LogLock(const QString &semaphoreKey);

    /*!
     * Through owner the copies of the log code in a process tell each other which thread is inside. It is
     * never freed. To be called before other threads use the lock, or inside a section.
     */
    void shareOwner(SectionOwner *owner) { sharedOwner = owner; }

    /*! Whether this thread is inside the section of any copy whose owner is shared. */
    bool isInside() const;
    /*! Whether this thread is inside the section of this copy. */
    static bool IsInsideThisCopy();

    /*! Whether a thread of this process, of whichever copy, has the semaphore. Before other threads use the
     * lock. */
    bool isHeldByThisProcess() { return semaphore.isHeldByThisProcess(); }

    /*!
     * From now on no section can be entered. Inside a last section letGo() gives up what other processes
     * share and tells whether this was its last user: then the semaphore goes as well. Gives up when a thread
     * that hangs inside does not leave within some seconds: the system takes back what the process holds.
     */
    void close(const std::function<bool()> &letGo);

private:
    QMutex mutex;
    bool closed = false; /*!< guarded by mutex */
    LogSemaphore semaphore;
    SectionOwner *sharedOwner = nullptr;
};

/*! Inside for the length of a scope. A thread that is inside already just stays so. */
class LogLock::Section
{
public:
    explicit Section(LogLock &lock);
    ~Section();
    Q_DISABLE_COPY(Section)

    /*! False when the section could not be entered. */
    explicit operator bool() const { return nested || entered; }

private:
    LogLock &lock;
    const bool nested;
    const bool outermost; /*!< in this copy */
    bool entered = false;
    SectionOwner *owner = nullptr;
};

} // namespace Shared::Logging::utils
