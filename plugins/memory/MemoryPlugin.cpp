#include "MemoryStorage.h"

#include <appdata/storages/StorageFactory.h>
#include <appdata/storages/StorageTypes.h>

namespace Shared::VersionInformation {
class VersionInformation;
}

using Tessellum::AppData::Storages::StorageFactory;

/*! The one function that the library looks for; returns the number of keys entered. */
extern "C" Q_DECL_EXPORT int
registerStorageInstance(QList<Shared::VersionInformation::VersionInformation> *versions,
                        StorageFactory *factory, const QString &libraryHash)
{
    Q_UNUSED(versions)
    Q_UNUSED(libraryHash)
    return Tessellum::AppData::Storages::RegisterStorage<Tessellum::Plugins::Memory::MemoryStorage>(
        *factory, Tessellum::AppData::Storages::StorageTypes::Memory());
}
