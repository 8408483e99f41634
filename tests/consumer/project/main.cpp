#include <appconfig/interfaces/RepositoryInterface.h>
#include <appdata/interfaces/RepositoryInterface.h>
#include <appdata/storages/StorageCreateData.h>
#include <core/CoreInterface.h>
#include <core/Library.h>

#include <QString>

using namespace Tessellum;

/*! Loads the plug-ins of the folder \a plugins, and makes a backend of one of them that reads \a folder. */
bool usePlugin(const QString &plugins, const QString &folder)
{
    if (addPluginSearchPath(plugins) != 0)
        return false;
    const auto repository = getCoreInterface()->getAppConfigRepository();
    return repository->getBackendInterface()->createBackend(QStringLiteral("folder"), QStringLiteral("files"),
                                                            {folder, QString(), 3},
                                                            Notification::CreatePoint::Done)
        && !repository->getQueryInterface()->queryAttributes(QStringLiteral("files.*")).isEmpty();
}

/*! Loads the plug-ins of the folder \a plugins, and makes a storage in memory of one of them. */
bool useStorage(const QString &plugins)
{
    if (addPluginSearchPath(plugins) != 0)
        return false;
    const auto storages = getCoreInterface()->getAppDataRepository()->getStorageInterface();
    return storages->addStorage(QStringLiteral("memory"), QStringLiteral("archive"),
                                AppData::Storages::StorageCreateDataDetails(),
                                Notification::CreatePoint::Done, QString())
        && storages->getStorage(QStringLiteral("archive"));
}

int main(int argc, char **argv)
{
    const bool started = initializeLibrary() == 0 && getCoreInterface()->getAppConfigRepository();
    const bool loaded = argc == 4
        && usePlugin(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]))
        && useStorage(QString::fromLocal8Bit(argv[3]));
    const bool stopped = uninitializeLibrary() == 1 && !getCoreInterface();
    return started && loaded && stopped ? 0 : 1;
}
