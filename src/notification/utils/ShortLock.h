#pragma once

#include <QMutex>

namespace Tessellum::Notification::utils {

/*!
 * Takes a mutex that is mostly held for a few instructions: tries for about as long as those take before the
 * thread goes to sleep, since to be woken costs many times that.
 */
inline void LockShortly(QMutex &mutex)
{
    constexpr int Tries = 100;
    for (int i = 0; i < Tries; ++i) {
        if (mutex.tryLock())
            return;
    }
    mutex.lock();
}

/*! Holds a mutex for a scope; takes it by LockShortly(). */
class ShortLocker
{
public:
    explicit ShortLocker(QMutex &locked)
        : mutex(locked)
    {
        relock();
    }
    ~ShortLocker()
    {
        if (holds)
            unlock();
    }
    Q_DISABLE_COPY(ShortLocker)

    void unlock()
    {
        holds = false;
        mutex.unlock();
    }
    void relock()
    {
        LockShortly(mutex);
        holds = true;
    }

private:
    QMutex &mutex;
    bool holds = false;
};

} // namespace Tessellum::Notification::utils
