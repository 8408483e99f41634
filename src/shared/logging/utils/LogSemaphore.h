#pragma once

#include <QString>
#include <QSystemSemaphore>

#include <memory>

namespace Shared::Logging::utils {

/**
 * The machine-wide semaphore of the log. Where another user owns its name, a name with this user's number
 * takes its place; where that is denied too, acquire() succeeds without a semaphore and the caller's mutex
 * has to do. Not for concurrent use.
 */
class LogSemaphore
{
public:
    explicit LogSemaphore(const QString &key);

    /// False when the system refuses.
    bool acquire();
    void release();
    /// Gives the semaphore back to the system; acquire() fails from now on.
    void close();

private:
    void fallBack();

    QString key;
    std::unique_ptr<QSystemSemaphore> semaphore;
    bool ownName = false; ///< the name with the user's number is in use
    bool absent = false; ///< not even that one
};

} // namespace Shared::Logging::utils
