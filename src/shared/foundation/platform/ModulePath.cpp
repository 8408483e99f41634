#include <shared/foundation/platform/ModulePath.h>

#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <climits>
#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

namespace Shared::Foundation::Platform {

QString ExecutableFilePath(int &error)
{
    std::array<char, PATH_MAX> buffer{};
    const ssize_t size = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (size < 0) {
        error = errno;
        return {};
    }
    return QFile::decodeName(QByteArray(buffer.data(), int(size)));
}

QString ModuleFilePath(const void *address, int &error)
{
    Dl_info info{};
    link_map *module = nullptr;
    if (dladdr1(address, &info, reinterpret_cast<void **>(&module), RTLD_DL_LINKMAP) == 0 || !module) {
        error = ENOENT;
        return {};
    }
    // The program itself has no name there.
    if (!module->l_name || *module->l_name == '\0')
        return ExecutableFilePath(error);
    return QFileInfo(QFile::decodeName(module->l_name)).absoluteFilePath();
}

} // namespace Shared::Foundation::Platform
