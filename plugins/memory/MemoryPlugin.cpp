#include "MemoryStorage.h"

#include <appdata/storages/StoragePlugin.h>
#include <appdata/storages/StorageTypes.h>

using Shared::VersionInformation::VersionInformation;

int registerStorageInstance(QList<VersionInformation> *versions,
                            Tessellum::AppData::Storages::StorageFactory *factory, const QString &)
{
    versions->append(VersionInformation(QStringLiteral("MemoryStorage"),
                                        QStringLiteral(":/MemoryStorage.vft"), QString()));
    return Tessellum::AppData::Storages::RegisterStorage<Tessellum::Plugins::Memory::MemoryStorage>(
        *factory, Tessellum::AppData::Storages::StorageTypes::Memory());
}
