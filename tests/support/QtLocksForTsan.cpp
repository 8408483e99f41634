// Linked into the tests of the "tsan" preset alone. Qt is not instrumented, so the thread sanitizer does not
// see what Qt's locks order. The functions here stand in front of Qt's own: each calls that and tells the
// sanitizer.
#include <QCoreApplication>
#include <QMutex>
#include <QReadWriteLock>
#include <QSemaphore>
#include <QThread>
#include <QWaitCondition>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

namespace {

// Qt's own function of that mangled name.
template <class Function>
Function *next(const char *symbol)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, symbol));
}

void acquired(const void *lock)
{
    __tsan_acquire(const_cast<void *>(lock));
}

void releasing(const void *lock)
{
    __tsan_release(const_cast<void *>(lock));
}

bool acquiredIf(bool taken, const void *lock)
{
    if (taken)
        acquired(lock);
    return taken;
}

} // namespace

void QMutex::lock()
{
    static const auto own = next<void(QMutex *)>("_ZN6QMutex4lockEv");
    own(this);
    acquired(this);
}

bool QMutex::tryLock(int timeout)
{
    static const auto own = next<bool(QMutex *, int)>("_ZN6QMutex7tryLockEi");
    return acquiredIf(own(this, timeout), this);
}

void QMutex::unlock() noexcept
{
    static const auto own = next<void(QMutex *)>("_ZN6QMutex6unlockEv");
    releasing(this);
    own(this);
}

void QBasicMutex::lockInternal()
{
    static const auto own = next<void(QBasicMutex *)>("_ZN11QBasicMutex12lockInternalEv");
    own(this);
    acquired(this);
}

void QBasicMutex::unlockInternal() noexcept
{
    static const auto own = next<void(QBasicMutex *)>("_ZN11QBasicMutex14unlockInternalEv");
    releasing(this);
    own(this);
}

bool QWaitCondition::wait(QMutex *mutex, QDeadlineTimer deadline)
{
    static const auto own = next<bool(QWaitCondition *, QMutex *, QDeadlineTimer)>(
        "_ZN14QWaitCondition4waitEP6QMutex14QDeadlineTimer");
    releasing(mutex);
    const bool woken = own(this, mutex, deadline);
    acquired(mutex);
    return woken;
}

bool QWaitCondition::wait(QMutex *mutex, unsigned long time)
{
    return wait(mutex, time == ULONG_MAX ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(time));
}

void QReadWriteLock::lockForRead()
{
    static const auto own = next<void(QReadWriteLock *)>("_ZN14QReadWriteLock11lockForReadEv");
    own(this);
    acquired(this);
}

void QReadWriteLock::lockForWrite()
{
    static const auto own = next<void(QReadWriteLock *)>("_ZN14QReadWriteLock12lockForWriteEv");
    own(this);
    acquired(this);
}

bool QReadWriteLock::tryLockForWrite(int timeout)
{
    static const auto own = next<bool(QReadWriteLock *, int)>("_ZN14QReadWriteLock15tryLockForWriteEi");
    return acquiredIf(own(this, timeout), this);
}

void QReadWriteLock::unlock()
{
    static const auto own = next<void(QReadWriteLock *)>("_ZN14QReadWriteLock6unlockEv");
    releasing(this);
    own(this);
}

bool QThread::wait(unsigned long time)
{
    static const auto own = next<bool(QThread *, unsigned long)>("_ZN7QThread4waitEm");
    return acquiredIf(own(this, time), this);
}

// What is posted to an object comes after what the poster did.
void QCoreApplication::postEvent(QObject *receiver, QEvent *event, int priority)
{
    static const auto own
        = next<void(QObject *, QEvent *, int)>("_ZN16QCoreApplication9postEventEP7QObjectP6QEventi");
    releasing(receiver);
    own(receiver, event, priority);
}

void QObject::deleteLater()
{
    static const auto own = next<void(QObject *)>("_ZN7QObject11deleteLaterEv");
    releasing(this);
    own(this);
}

bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   void *returned)
{
    static const auto own = next<bool(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType, void *)>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    releasing(object);
    return own(object, slot, type, returned);
}

bool QObject::event(QEvent *event)
{
    static const auto own = next<bool(QObject *, QEvent *)>("_ZN7QObject5eventEP6QEvent");
    acquired(this);
    return own(this, event);
}

void QSemaphore::acquire(int n)
{
    static const auto own = next<void(QSemaphore *, int)>("_ZN10QSemaphore7acquireEi");
    own(this, n);
    acquired(this);
}

bool QSemaphore::tryAcquire(int n, int timeout)
{
    static const auto own = next<bool(QSemaphore *, int, int)>("_ZN10QSemaphore10tryAcquireEii");
    return acquiredIf(own(this, n, timeout), this);
}

void QSemaphore::release(int n)
{
    static const auto own = next<void(QSemaphore *, int)>("_ZN10QSemaphore7releaseEi");
    releasing(this);
    own(this, n);
}
