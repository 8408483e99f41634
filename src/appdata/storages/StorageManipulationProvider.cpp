#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/EntryDeserializeInformation.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageManipulationProvider.h>
#include <appdata/storages/utils/DetachEntry.h>
#include <appdata/utils/LoadStatusMirror.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/PoolWait.h>
#include <shared/hierarchy/HierarchyStringPath.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppData::Storages {

using AppData::utils::LoadStatusMirror;
using AppData::utils::RepositoryProvider;
using Data::Entries::Entry;
using Data::Entries::EntryDeserializeInformation;
using Notification::CreatePoint;
using Shared::Logging::FrameworkLog;

bool StorageManipulationProvider::loadDataEntry(const QString &uuid, const LoadDataHint &hint)
{
    if (storage->getChildById(uuid))
        return true;
    const auto parent = std::dynamic_pointer_cast<Storage>(storage->self());
    if (!parent) {
        FrameworkLog().fatal()
            << "StorageManipulationProvider::loadDataEntry() failed to cast contained storage!";
        return false;
    }
    EntryDeserializeInformation information;
    information.uuid = uuid;
    information.loadDataHint = hint;
    information.storage = parent;
    auto &pool = RepositoryProvider::getInstance()->getThreadPool();
    return Notification::utils::WaitForSuccess(
        pool, pool.startCreateTask(parent, QString(), QVariant::fromValue(information), CreatePoint::Done));
}

bool StorageManipulationProvider::unloadDataEntry(const QString &uuid)
{
    const auto entry = std::dynamic_pointer_cast<Entry>(storage->getChildById(uuid));
    if (!entry)
        return false;
    const QString path = entry->getNodePath()->getFullPath();
    utils::DetachEntry(entry);
    // The next attachment shows its own status there, which a late removal would take away.
    Notification::utils::WaitForTask(AppConfig::utils::RepositoryProvider::getInstance()->getThreadPool(),
                                     LoadStatusMirror::StartRemoval(path));
    return true;
}

} // namespace Tessellum::AppData::Storages
