#include <appconfig/interfaces/RepositoryInterface.h>
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

int main(int argc, char **argv)
{
    const bool started = initializeLibrary() == 0 && getCoreInterface()->getAppConfigRepository();
    const bool loaded
        = argc == 3 && usePlugin(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    const bool stopped = uninitializeLibrary() == 1 && !getCoreInterface();
    return started && loaded && stopped ? 0 : 1;
}
