#include <shared/foundation/platform/Processes.h>
#include <shared/foundation/platform/SystemSemaphore.h>
#include <shared/foundation/ProcessHelpers.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/SystemScopeLock.h>

#include <QCoreApplication>
#include <QStringList>

#include <cstring>

using Shared::Foundation::Platform::SystemSemaphore;
using Shared::Logging::FrameworkLog;

namespace Shared::Synchronization {

namespace {

constexpr int lockTimeout = 5000; // milliseconds
// The last process to detach removes the memory; one that comes in between finds it gone and tries again.
constexpr int attempts = 20;
constexpr QChar separator = QLatin1Char('|');

bool IsFailure(QSharedMemory::SharedMemoryError error)
{
    return error != QSharedMemory::NoError && error != QSharedMemory::AlreadyExists;
}

/*! What stands behind the first field that is not empty, without the separators between. */
QString BehindFirstField(const QString &data)
{
    int position = 0;
    const auto skip = [&](bool separators) {
        while (position < data.size() && (data.at(position) == separator) == separators)
            ++position;
    };
    skip(true);
    skip(false);
    skip(true);
    return data.mid(position);
}

/*! Whether nobody else is attached to the memory of this system's name. */
bool IsUnused(const QString &nativeKey)
{
    QSharedMemory others;
    others.setNativeKey(nativeKey);
    return !others.attach(QSharedMemory::ReadOnly);
}

} // namespace

/*! Inside for the length of a scope, if it could be entered. */
class SystemScopeLock::Section
{
public:
    explicit Section(SystemSemaphore &lockedSemaphore)
        : semaphore(lockedSemaphore)
        , result(semaphore.acquire(QDeadlineTimer(lockTimeout)))
    { }
    ~Section()
    {
        if (*this)
            semaphore.release();
    }
    Q_DISABLE_COPY(Section)

    explicit operator bool() const { return result == SystemSemaphore::Result::Acquired; }

private:
    SystemSemaphore &semaphore;
    const SystemSemaphore::Result result;
};

SystemScopeLock::SystemScopeLock(const QString &key_, const int &size)
    : applicationPath(QCoreApplication::instance() ? QCoreApplication::applicationFilePath() : QString())
    , key(key_)
    , semaphore(std::make_unique<SystemSemaphore>(key_))
{
    // With the system's own name QSharedMemory takes no lock: its semaphore can stay at 0 for ever when
    // processes come and go at the same time. This one is the same object for whoever uses Qt's.
    memory.setNativeKey(QSharedMemory(key).nativeKey());
    if (const Section section{*semaphore})
        open(size);
    else
        lockError = QStringLiteral("the lock of the key cannot be had");
}

SystemScopeLock::~SystemScopeLock()
{
    if (semaphore->acquire(QDeadlineTimer(lockTimeout)) != SystemSemaphore::Result::Acquired) {
        memory.detach();
        return;
    }
    memory.detach();
    // Inside the section: whoever is about to attach waits for it, and has to make a new semaphore.
    if (IsUnused(memory.nativeKey()))
        semaphore->remove();
    else
        semaphore->release();
}

/*! Attached from the first moment on, so that the mark cannot go while this object is there. */
void SystemScopeLock::open(int size)
{
    // Once a create has failed Qt does not attach under the system's own name, so that comes first.
    for (int attempt = 0; attempt < attempts && !memory.isAttached(); ++attempt) {
        if (size > 0 && (attach() || memory.error() != QSharedMemory::NotFound))
            break;
        if (memory.create(size, QSharedMemory::ReadWrite))
            std::memset(memory.data(), 0, std::size_t(memory.size()));
    }
    valid = memory.isAttached();
}

bool SystemScopeLock::isValid() const
{
    return valid;
}

bool SystemScopeLock::hasError() const
{
    return !lockError.isEmpty() || IsFailure(memory.error());
}

QString SystemScopeLock::getErrorString() const
{
    if (!lockError.isEmpty())
        return lockError;
    return hasError() ? memory.errorString() : QString();
}

QString SystemScopeLock::getData()
{
    if (!valid)
        return {};
    {
        const Section section(*semaphore);
        if (section && attach())
            return read();
    }
    FrameworkLog().warning() << "SystemScopeLock::getData() could not attach to the shared memory with key="
                             << key << " error=" << memory.errorString();
    return {};
}

bool SystemScopeLock::isInUse()
{
    if (!valid)
        return false;
    const QString data = getData();
    const QStringList fields = data.split(separator, Qt::SkipEmptyParts, Qt::CaseSensitive);
    if (fields.isEmpty())
        return false;
    const uint processId = fields.constFirst().toUInt();
    const bool running = isOwnerAlive(int(processId), data);
    FrameworkLog().log() << "SystemScopeLock::isInUse() process=" << fields.value(1)
                         << " with id=" << processId << " is currently "
                         << (running ? "running" : "NOT running");
    return running;
}

bool SystemScopeLock::tryToUse()
{
    if (!valid)
        return false;
    if (!isInUse()) {
        const Section section(*semaphore);
        if (section && attach()) {
            write(ownMark());
            return true;
        }
    }
    FrameworkLog().log() << "SystemScopeLock::tryToUse() could not use shared memory with key=" << key
                         << " the memory is used through=" << getData();
    return false;
}

bool SystemScopeLock::appendData(const QString &text)
{
    if (!valid)
        return false;
    QString data;
    {
        const Section section(*semaphore);
        if (!section || !attach())
            return false;
        data = read() + separator + text;
        write(data);
    }
    FrameworkLog().log() << "SystemScopeLock::appendData() new data=" << data << ", appended=" << text;
    return true;
}

bool SystemScopeLock::clear()
{
    if (!valid)
        return false;
    const QString expected = ownMark();
    QString data;
    {
        const Section section(*semaphore);
        if (section && attach()) {
            data = read();
            if (data == expected) {
                std::memset(memory.data(), 0, std::size_t(memory.size()));
                return true;
            }
        }
    }
    FrameworkLog().log() << "SystemScopeLock::clear() current data=" << data
                         << ", expected data=" << expected;
    return false;
}

bool SystemScopeLock::attach()
{
    return memory.isAttached() || memory.attach(QSharedMemory::ReadWrite);
}

QString SystemScopeLock::read() const
{
    const auto *const text = static_cast<const char *>(memory.constData());
    return QString::fromLocal8Bit(text, int(qstrnlen(text, uint(memory.size()))));
}

void SystemScopeLock::write(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    const auto size = std::size_t(memory.size());
    const std::size_t used = qMin(std::size_t(bytes.size()), size - 1);
    auto *const target = static_cast<char *>(memory.data());
    std::memcpy(target, bytes.constData(), used);
    std::memset(target + used, 0, size - used);
}

QString SystemScopeLock::ownMark() const
{
    return QString::number(QCoreApplication::applicationPid()) + separator + applicationPath;
}

/*! The number of a process that has ended may be another's by now. */
bool SystemScopeLock::isOwnerAlive(int processId, const QString &data) const
{
    if (!CheckIfProcessIdIsRunning(processId))
        return false;
    QString file = QString::fromLocal8Bit(Foundation::Platform::ProcessFile(processId));
    const QString path = BehindFirstField(data);
    if (file.isEmpty() || path.isEmpty())
        return true; // one of the two is not known
    // A program whose file was replaced still runs.
    const QLatin1String deleted(" (deleted)");
    if (file.endsWith(deleted))
        file.chop(deleted.size());
    // Of the path only the beginning may have had room, and it may hold a separator.
    const bool cut = data.toLocal8Bit().size() >= memory.size() - 1;
    return (path + separator).startsWith(file + separator) || (cut && file.startsWith(path));
}

} // namespace Shared::Synchronization
