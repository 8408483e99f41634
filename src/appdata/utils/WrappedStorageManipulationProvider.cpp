#include <appdata/utils/WrappedStorageManipulationProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::StorageManipulationInterface;

bool WrappedStorageManipulationProvider::loadDataEntry(const QString &uuid, const LoadDataHint &hint)
{
    return writing([&](StorageManipulationInterface &storage) { return storage.loadDataEntry(uuid, hint); });
}

bool WrappedStorageManipulationProvider::unloadDataEntry(const QString &uuid)
{
    return writing([&](StorageManipulationInterface &storage) { return storage.unloadDataEntry(uuid); });
}

} // namespace Tessellum::AppData::utils
