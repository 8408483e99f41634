#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageManipulationProvider.h>
#include <appdata/storages/StorageQueryProvider.h>
#include <appdata/utils/LoadStatusMirror.h>
#include <shared/synchronization/ScopedLock.h>

namespace Tessellum::AppData::Storages {

using AppData::utils::LoadStatusMirror;
using Shared::Synchronization::ScopedLock;

Storage::Storage(const StorageCreateData &createData)
    : StorageInterfaceProvider(createData)
    , manipulationProvider(std::make_shared<StorageManipulationProvider>(this))
    , queryProvider(std::make_shared<StorageQueryProvider>(this))
{ }

Storage::~Storage() = default;

std::shared_ptr<const Interfaces::StorageManipulationInterface> Storage::getManipulationInterface() const
{
    return {self(), manipulationProvider.get()};
}

std::shared_ptr<Interfaces::StorageManipulationInterface> Storage::getManipulationInterface()
{
    return {self(), manipulationProvider.get()};
}

std::shared_ptr<const Interfaces::StorageQueryInterface> Storage::getQueryInterface() const
{
    return {self(), queryProvider.get()};
}

std::shared_ptr<Interfaces::StorageQueryInterface> Storage::getQueryInterface()
{
    return {self(), queryProvider.get()};
}

bool Storage::setLoadStatus(const LoadStatus &status)
{
    std::shared_ptr<LoadStatusMirror> present;
    LoadStatus before = LoadStatus::Unknown;
    {
        // The old status and its follower are one step, or two threads would publish the same old one.
        const ScopedLock locker(this);
        before = getLoadStatus();
        if (!StorageInterfaceProvider::setLoadStatus(status))
            return false;
        if (!mirror)
            mirror = std::make_shared<LoadStatusMirror>(self()); // needs the shared pointer to this node
        present = mirror;
    }
    present->publish(before, status);
    return true;
}

} // namespace Tessellum::AppData::Storages
