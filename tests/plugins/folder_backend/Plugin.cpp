#include "FolderBackend.h"

#include <appconfig/backends/BackendPlugin.h>

using Shared::VersionInformation::VersionInformation;

int registerBackendInstance(QList<VersionInformation> *versions,
                            Tessellum::AppConfig::Backends::BackendFactory *factory, const QString &)
{
    versions->append(VersionInformation(QStringLiteral("FolderBackend"),
                                        QStringLiteral(":/FolderBackend.vft"), QString()));
    return Tessellum::AppConfig::Backends::RegisterBackend<FolderBackend>(*factory);
}
