#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <appdata/storages/utils/StorageInterfaceProvider.h>
#include <shared/synchronization/ScopedLock.h>

#include <QUuid>

namespace Tessellum::AppData::Storages::utils {

using Shared::Synchronization::ScopedLock;

StorageInterfaceProvider::StorageInterfaceProvider(const StorageCreateData &createData)
    : HierarchyNodeInstance(QUuid::createUuid().toString())
    , AppDataRepositoryEventThreadUser(this)
    , data(createData)
{ }

StorageInterfaceProvider::~StorageInterfaceProvider() = default;

QString StorageInterfaceProvider::getType() const
{
    return data.type;
}

QStringList StorageInterfaceProvider::getEntryTypes() const
{
    return CallMedium("StorageInterfaceProvider::getEntryTypes()", QStringList(),
                      [this] { return data.implementation->getEntryTypes(); });
}

QString StorageInterfaceProvider::getLabel() const
{
    const ScopedLock locker(this);
    return data.label;
}

bool StorageInterfaceProvider::setLabel(const QString &label)
{
    if (label.isEmpty())
        return false;
    const ScopedLock locker(this);
    data.label = label;
    return true;
}

QString StorageInterfaceProvider::getName() const
{
    return data.name;
}

QString StorageInterfaceProvider::getId() const
{
    return HierarchyNodeInstance::getId();
}

LoadStatus StorageInterfaceProvider::getLoadStatus() const
{
    const ScopedLock locker(this);
    return loadStatus;
}

bool StorageInterfaceProvider::setLoadStatus(const LoadStatus &status)
{
    if (status == LoadStatus::Unknown)
        return false;
    const ScopedLock locker(this);
    loadStatus = status;
    return true;
}

} // namespace Tessellum::AppData::Storages::utils
