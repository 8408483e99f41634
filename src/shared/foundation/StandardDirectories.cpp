#include <shared/foundation/platform/SharedDirectories.h>
#include <shared/foundation/StandardDirectories.h>

namespace Shared {

QString GetDocumentsDirectory()
{
    return GetStandardLocationForType(QStandardPaths::DocumentsLocation);
}

QString GetConfigurationDirectory()
{
    return GetStandardLocationForType(QStandardPaths::AppConfigLocation);
}

QString GetDataDirectory()
{
    return GetStandardLocationForType(QStandardPaths::AppDataLocation);
}

QString GetPublicDocumentsDirectory()
{
    return Foundation::Platform::PublicDocumentsDirectory();
}

QString GetStandardLocationForType(const QStandardPaths::StandardLocation &type)
{
    return QStandardPaths::writableLocation(type);
}

} // namespace Shared
