#pragma once

#include <QDeadlineTimer>
#include <QString>

namespace Shared::Foundation::Platform {

/*!
 * A machine-wide semaphore of count 1 under a name: the very object that QSystemSemaphore opens under that
 * key. Qt's class is not used since it can leave the semaphore at 0 for ever where one process opens it while
 * another removes it, and counts it up to 2 where it is removed while somebody is inside. The system counts
 * it up for a process that dies inside. Not for concurrent use by threads.
 */
class SystemSemaphore
{
public:
    enum class Result {
        Acquired,
        Denied, /*!< it is another user's */
        Failed /*!< the system refuses, or the time is over */
    };

    explicit SystemSemaphore(const QString &key);

    /*! Waits for its turn, without end by default. */
    Result acquire(QDeadlineTimer deadline = QDeadlineTimer::Forever);
    void release();
    /*! Acquired when a thread of this process has it now, Failed when none has. */
    Result peek();
    /*! Takes the semaphore from the system. Whoever waits for it, or comes later, makes a new one. */
    void remove();

private:
    bool open();
    bool create(int systemKey);
    void initializeOrphan() const;

    QString keyFile; /*!< the file whose identity is the system's key of the semaphore */
    int id = -1;
};

} // namespace Shared::Foundation::Platform
