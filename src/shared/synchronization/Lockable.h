#pragma once

#include <shared/TessellumExport.h>

#include <QMutex>
#include <QObject>

#include <atomic>
#include <thread>

namespace Shared::Synchronization {

/*!
 * An object that can be locked from outside, also through a const reference.
 *
 * Threads: every function may be called from any thread. The lock guards whatever the derived class says.
 * The mutex lies in the object and is not recursive itself; a recursive Lockable remembers its owner, so that
 * an object costs no allocation for its lock and a lock nobody competes for costs one atomic exchange.
 */
class TESSELLUM_EXPORT Lockable : public QObject
{
    Q_OBJECT

public:
    /*! With QMutex::Recursive the holder may lock again; with QMutex::NonRecursive it would wait for ever. */
    explicit Lockable(QObject *parent, const QMutex::RecursionMode &mode);
    ~Lockable() override;

    /*! Whether any thread holds the lock. */
    virtual bool isLocked() const;

    /*! Waits for the lock and returns the new depth. Emits locked() where the depth was 0. */
    int lock() const;

    /*! Gives one level back and returns the new depth. Emits unlocked() where the depth becomes 0. Only the
     * holder may call this. */
    int unlock() const;

    /*! The depth of the lock as any thread may read it: a snapshot. */
    int lockLevel() const;

Q_SIGNALS:
    /*! Emitted by the holder, under the lock: a slot connected directly runs with the lock held. */
    void locked() const;
    /*! Emitted by the holder just before the mutex is free: a slot connected directly runs with the lock
     * held, and may take a recursive one again. */
    void unlocked() const;

protected:
    void connectNotify(const QMetaMethod &signal) override;

private:
    bool announceRelease() const;

    mutable QBasicMutex lockMutex;
    mutable std::atomic<std::thread::id> lockOwner{std::thread::id()};
    mutable std::atomic<int> lockCount{0};
    mutable bool isReleasing = false; // guarded by the lock: whether unlocked() is being emitted
    const bool isRecursive;
    // An emission costs more than the lock itself, so that it waits for the first listener.
    std::atomic<bool> hasListener{false};
};

} // namespace Shared::Synchronization
