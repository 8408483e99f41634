#include <shared/foundation/platform/SystemSemaphore.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>

namespace Shared::Foundation::Platform {

namespace {

constexpr int accessMode = 0600;
// How often the semaphore may vanish while it is opened; each time another process has just ended.
constexpr int attempts = 100;
// After so long a wait it is looked whether the semaphore was ever given its count.
constexpr timespec slice{0, 250000000};

union SemaphoreArgument {
    int value;
    semid_ds *state;
};

/*! Where Qt keeps the file of a QSystemSemaphore with this key. */
QString KeyFile(const QString &key)
{
    QString name = QStringLiteral("qipc_systemsem_");
    std::copy_if(key.begin(), key.end(), std::back_inserter(name),
                 [](QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); });
    name += QLatin1String(QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha1).toHex());
    return QDir::tempPath() + QLatin1Char('/') + name;
}

int SystemKey(const QString &keyFile)
{
    return ftok(QFile::encodeName(keyFile).constData(), 'Q');
}

bool IsDenied(int error)
{
    return error == EACCES || error == EPERM;
}

bool IsGone(int error)
{
    return error == EIDRM || error == EINVAL;
}

bool ChangeCount(int id, short change, const timespec *timeout)
{
    sembuf operation{0, change, SEM_UNDO};
    return semtimedop(id, &operation, 1, timeout) == 0;
}

} // namespace

SystemSemaphore::SystemSemaphore(const QString &key)
    : keyFile(KeyFile(key))
{ }

SystemSemaphore::Result SystemSemaphore::acquire(QDeadlineTimer deadline)
{
    for (int attempt = 0; attempt < attempts;) {
        if (id == -1 && !open()) {
            if (IsDenied(errno))
                return Result::Denied;
            ++attempt;
            continue;
        }
        if (ChangeCount(id, -1, &slice))
            return Result::Acquired;
        if (errno == EAGAIN || errno == EINTR) {
            // Under a profiler's signals hardly a slice is waited through; the time passes nevertheless.
            const bool waitedThrough = errno == EAGAIN;
            if (deadline.hasExpired())
                return Result::Failed;
            if (waitedThrough)
                initializeOrphan();
        } else if (IsGone(errno)) {
            id = -1;
            ++attempt;
        } else {
            return Result::Failed;
        }
    }
    return Result::Failed;
}

void SystemSemaphore::release()
{
    // Somebody may have removed it meanwhile. A new one has its full count already.
    while (!ChangeCount(id, 1, nullptr)) {
        if (errno == EINTR)
            continue;
        id = -1;
        return;
    }
}

SystemSemaphore::Result SystemSemaphore::peek()
{
    if (id == -1 && !open())
        return IsDenied(errno) ? Result::Denied : Result::Failed;
    return semctl(id, 0, GETVAL) == 0 && semctl(id, 0, GETPID) == getpid() ? Result::Acquired
                                                                           : Result::Failed;
}

void SystemSemaphore::remove()
{
    if (id == -1)
        return;
    // The file goes first: those whom the removal wakes must not find the way to the old semaphore any more.
    QFile::remove(keyFile);
    semctl(id, 0, IPC_RMID);
    id = -1;
}

bool SystemSemaphore::open()
{
    const int file
        = ::open(QFile::encodeName(keyFile).constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, accessMode);
    if (file >= 0)
        ::close(file);
    else if (errno != EEXIST)
        return false;

    const int systemKey = SystemKey(keyFile);
    if (systemKey == -1)
        return false;
    const bool created = create(systemKey);
    if (!created) {
        if (errno != EEXIST)
            return false;
        id = semget(systemKey, 1, accessMode);
        if (id == -1)
            return false;
    }
    if (SystemKey(keyFile) == systemKey)
        return true;
    // The file was removed in between, and nobody will find what was made with its key.
    if (created)
        semctl(id, 0, IPC_RMID);
    id = -1;
    errno = EAGAIN;
    return false;
}

bool SystemSemaphore::create(int systemKey)
{
    id = semget(systemKey, 1, accessMode | IPC_CREAT | IPC_EXCL);
    if (id == -1)
        return false;
    SemaphoreArgument count;
    count.value = 1;
    semctl(id, 0, SETVAL, count);
    return true;
}

/*! A semaphore that nobody has ever used stands at 0: who made it died before it got its count. */
void SystemSemaphore::initializeOrphan() const
{
    semid_ds state;
    SemaphoreArgument argument;
    argument.state = &state;
    if (semctl(id, 0, IPC_STAT, argument) == 0 && state.sem_otime == 0 && semctl(id, 0, GETVAL) == 0
        && semctl(id, 0, GETPID) == 0) {
        argument.value = 1;
        semctl(id, 0, SETVAL, argument);
    }
}

} // namespace Shared::Foundation::Platform
