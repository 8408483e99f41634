#include <shared/foundation/platform/Processes.h>

#include <QFile>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <dirent.h>
#include <functional>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace Shared::Foundation::Platform {

namespace {

QByteArray ProcessFolder(int processId)
{
    return "/proc/" + QByteArray::number(processId);
}

/*! The text behind the name of a line, empty without such a line. */
QByteArray StatusField(const QByteArray &status, const QByteArray &name)
{
    const QByteArray mark = '\n' + name + ':';
    const int begin = status.indexOf(mark);
    if (begin < 0)
        return {};
    const int text = begin + mark.size();
    return status.mid(text, status.indexOf('\n', text) - text).trimmed();
}

QByteArray LinkTarget(const QByteArray &path)
{
    std::array<char, PATH_MAX> buffer{};
    const ssize_t size = readlink(path.constData(), buffer.data(), buffer.size());
    return size < 0 ? QByteArray() : QByteArray(buffer.data(), int(size));
}

/*! Calls \a visit with each name in the folder that is a number. */
void ForEachNumber(const QByteArray &folder, const std::function<void(const QByteArray &)> &visit)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(opendir(folder.constData()), &closedir);
    if (!entries)
        return;
    while (const dirent *const entry = readdir(entries.get())) {
        if (*entry->d_name >= '0' && *entry->d_name <= '9')
            visit(entry->d_name);
    }
}

} // namespace

bool IsProcessRunning(int processId)
{
    if (processId <= 0 || (kill(processId, 0) != 0 && errno == ESRCH))
        return false;
    QFile file(QFile::decodeName(ProcessFolder(processId) + "/status"));
    // Some systems hide the processes of other users.
    if (!file.open(QIODevice::ReadOnly))
        return kill(processId, 0) == 0 || errno != ESRCH;
    const QByteArray status = file.readAll();
    const QByteArray state = StatusField(status, "State");
    // The first thread's state, which may have ended while others go on.
    const bool isDead
        = state.startsWith('X') || (state.startsWith('Z') && StatusField(status, "Threads").toInt() < 2);
    return !isDead && StatusField(status, "Tgid") == QByteArray::number(processId);
}

bool KillProcess(int processId)
{
    // 0 and below would be groups of processes.
    return processId > 0 && kill(processId, SIGKILL) == 0;
}

QByteArray ProcessFile(int processId)
{
    return LinkTarget(ProcessFolder(processId) + "/exe");
}

FileIdentity IdentityOfFile(const QByteArray &path)
{
    struct stat state
    { };
    return stat(path.constData(), &state) == 0 ? FileIdentity(state.st_dev, state.st_ino) : FileIdentity();
}

QSet<FileIdentity> OpenFiles(const QByteArray &folder)
{
    QSet<FileIdentity> files;
    const QByteArray beginning = folder + '/';
    ForEachNumber("/proc", [&](const QByteArray &process) {
        const QByteArray descriptors = "/proc/" + process + "/fd";
        ForEachNumber(descriptors, [&](const QByteArray &descriptor) {
            // Not by its name: a temporary file may have been opened before it had one. Other folders are not
            // looked into, as they may lie on a server that does not answer.
            const QByteArray link = descriptors + '/' + descriptor;
            if (LinkTarget(link).startsWith(beginning))
                files.insert(IdentityOfFile(link));
        });
    });
    return files;
}

} // namespace Shared::Foundation::Platform
