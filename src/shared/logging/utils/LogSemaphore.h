#pragma once

#include <shared/foundation/platform/SystemSemaphore.h>

#include <QDeadlineTimer>
#include <QString>

namespace Shared::Logging::utils {

/*!
 * The machine-wide semaphore of the log. Where another user owns its name, a name with this user's number
 * takes its place; where that is denied too, acquire() succeeds without a semaphore and the caller's mutex
 * has to do. Not for concurrent use.
 */
class LogSemaphore
{
public:
    explicit LogSemaphore(const QString &key);

    /*! False when the system refuses, or when the time is over. */
    bool acquire(QDeadlineTimer deadline = QDeadlineTimer::Forever);
    void release();
    /*! Whether it is this process that acquired it. */
    bool isHeldByThisProcess();
    /*! Takes the semaphore from the system; other processes make a new one. */
    void remove();

private:
    using SystemSemaphore = Foundation::Platform::SystemSemaphore;

    void fallBack();

    QString key;
    SystemSemaphore semaphore;
    bool ownName = false; /*!< the name with the user's number is in use */
    bool absent = false; /*!< not even that one */
};

} // namespace Shared::Logging::utils
