#include <appconfig/backends/BackendRegistration.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/utils/RepositoryProvider.h>
#include <core/CoreSequences.h>
#include <core/PluginLoader.h>
#include <core/utils/LibraryHash.h>
#include <notification/RepositoryLocks.h>
#include <shared/foundation/platform/LibraryFile.h>
#include <shared/logging/FrameworkLog.h>

#include <QDir>
#include <QLibrary>

namespace Tessellum::Core {

namespace {

QStringList pluginPatterns(const QString &ownPattern)
{
    return {QStringLiteral("*.dll"), QStringLiteral("*.so"), ownPattern};
}

/*! Guarded by pluginPathLock(); never emptied, since plug-ins stay loaded. */
QStringList &pluginSearchPaths()
{
    static auto *const paths = new QStringList;
    return *paths;
}

/*! What the plug-in wrote counts only as a whole, so it gets a list of its own. */
int callEntry(const QString &file, QFunctionPointer entry, const utils::EntryCall &call,
              VersionInformationList &versions)
{
    VersionInformationList records;
    try {
        const int registered = call(entry, records);
        versions.append(records);
        return qMax(0, registered);
    } catch (...) {
        Shared::Logging::FrameworkLog().critical()
            << "loadPluginFiles() catched exception of plug-in '" << file << "'";
        return 0;
    }
}

} // namespace

qint64 utils::LoadPluginFiles(const QString &directory, const QStringList &patterns, const char *entryName,
                              VersionInformationList &versions, const EntryCall &call)
{
    qint64 registered = 0;
    const QFileInfoList files = QDir(directory).entryInfoList(patterns, QDir::Files, QDir::NoSort);
    for (const QFileInfo &file : files) {
        if (Shared::Foundation::Platform::IsCutLibrary(file.absoluteFilePath()))
            continue; // the process would not survive it
        constexpr int version = 1;
        // Going out of scope it does not unload, since load() was called for good.
        QLibrary library(file.absoluteFilePath(), version);
        const QFunctionPointer entry = library.load() ? library.resolve(entryName) : nullptr;
        if (entry)
            registered += callEntry(file.absoluteFilePath(), entry, call, versions);
    }
    return registered;
}

bool loadPluginsFrom(const QString &path)
{
    using AppConfig::utils::RepositoryProvider;
    VersionInformationList versions;
    // The factories have their own locks: a plug-in's code runs with none held, so that it may use the
    // library.
    AppConfig::Backends::BackendFactory &backends = *RepositoryProvider::getInstance();
    loadPluginFiles(path, pluginPatterns(QStringLiteral("*.bp")), "registerBackendInstance", versions,
                    backends, utils::LibraryHash());
    AppData::Storages::StorageFactory &storages = *AppData::utils::RepositoryProvider::getInstance();
    loadPluginFiles(path, pluginPatterns(QStringLiteral("*.sp")), "registerStorageInstance", versions,
                    storages, utils::LibraryHash());
    registerTypeLists();
    rememberPluginRecords(versions);
    return registerVersionInformation(versions);
}

int AddPluginSearchPath(const QString &path)
{
    if (path.isEmpty())
        return -2;
    {
        // Not held while plug-ins load: one may add further paths.
        const QWriteLocker locker(&pluginPathLock());
        if (pluginSearchPaths().contains(path))
            return -1;
        pluginSearchPaths().append(path);
    }
    return loadPluginsFrom(path) ? 0 : -1;
}

} // namespace Tessellum::Core
