#include <appdata/utils/WrappedStorage.h>
#include <appdata/utils/WrappedStorageManipulationProvider.h>
#include <appdata/utils/WrappedStorageQueryProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::StorageInterface;

namespace {

const auto manipulationOf = [](StorageInterface &storage) { return storage.getManipulationInterface(); };
const auto queryOf = [](StorageInterface &storage) { return storage.getQueryInterface(); };

} // namespace

QString WrappedStorage::getType() const
{
    return reading([](const StorageInterface &storage) { return storage.getType(); });
}

QStringList WrappedStorage::getEntryTypes() const
{
    return reading([](const StorageInterface &storage) { return storage.getEntryTypes(); });
}

QString WrappedStorage::getLabel() const
{
    return reading([](const StorageInterface &storage) { return storage.getLabel(); });
}

bool WrappedStorage::setLabel(const QString &label)
{
    return writing([&](StorageInterface &storage) { return storage.setLabel(label); });
}

QString WrappedStorage::getName() const
{
    return reading([](const StorageInterface &storage) { return storage.getName(); });
}

QString WrappedStorage::getId() const
{
    return reading([](const StorageInterface &storage) { return storage.getId(); });
}

LoadStatus WrappedStorage::getLoadStatus() const
{
    return reading([](const StorageInterface &storage) { return storage.getLoadStatus(); });
}

std::shared_ptr<const Interfaces::StorageManipulationInterface>
WrappedStorage::getManipulationInterface() const
{
    return wrapped<WrappedStorageManipulationProvider>(manipulationOf);
}

std::shared_ptr<Interfaces::StorageManipulationInterface> WrappedStorage::getManipulationInterface()
{
    return wrapped<WrappedStorageManipulationProvider>(manipulationOf);
}

std::shared_ptr<const Interfaces::StorageQueryInterface> WrappedStorage::getQueryInterface() const
{
    return wrapped<WrappedStorageQueryProvider>(queryOf);
}

std::shared_ptr<Interfaces::StorageQueryInterface> WrappedStorage::getQueryInterface()
{
    return wrapped<WrappedStorageQueryProvider>(queryOf);
}

} // namespace Tessellum::AppData::utils
