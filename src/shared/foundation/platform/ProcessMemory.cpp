#include <shared/foundation/platform/ProcessMemory.h>

#include <QByteArray>
#include <QFile>
#include <QList>

#include <cerrno>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

namespace Shared::Foundation::Platform {

namespace {

/*!
 * The way for a system that forbids process_vm_readv: writing from an unmapped address fails instead of
 * faulting.
 */
bool ReadThroughPipe(const void *source, void *target, std::size_t size)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    const auto expected = static_cast<ssize_t>(size);
    const bool copied = write(ends[1], source, size) == expected && read(ends[0], target, size) == expected;
    ::close(ends[0]);
    ::close(ends[1]);
    return copied;
}

} // namespace

quint64 ProcessStartTime()
{
    QFile file(QStringLiteral("/proc/self/stat"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    // The name of the program, in brackets, may hold blanks and brackets itself. Behind it comes field 3.
    const QByteArray stat = file.readAll();
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    constexpr int startTimeField = 22 - 3;
    return fields.value(startTimeField).toULongLong();
}

bool ReadOwnMemory(quint64 address, void *target, std::size_t size)
{
    void *const source = reinterpret_cast<void *>(static_cast<quintptr>(address));
    iovec local{target, size};
    iovec remote{source, size};
    const ssize_t count = process_vm_readv(getpid(), &local, 1, &remote, 1, 0);
    if (count < 0 && (errno == EPERM || errno == ENOSYS))
        return ReadThroughPipe(source, target, size);
    return count == static_cast<ssize_t>(size);
}

} // namespace Shared::Foundation::Platform
