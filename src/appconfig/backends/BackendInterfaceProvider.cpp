#include <appconfig/backends/BackendInterfaceProvider.h>
#include <shared/synchronization/ScopedLock.h>

using Shared::Synchronization::ScopedLock;

namespace Tessellum::AppConfig::Backends::utils {

BackendInterfaceProvider::BackendInterfaceProvider(const BackendCreateData &backendCreateData)
    : HierarchyNodeInstance(backendCreateData.name)
    , AppConfigRepositoryEventThreadUser(this)
    , createData(backendCreateData)
{ }

QString BackendInterfaceProvider::getType() const
{
    const ScopedLock lock(this);
    return createData.type;
}

QString BackendInterfaceProvider::getDescription() const
{
    const ScopedLock lock(this);
    return createData.description;
}

QString BackendInterfaceProvider::getId() const
{
    return HierarchyNodeInstance::getId();
}

bool BackendInterfaceProvider::setDescription(const QString &description)
{
    if (description.isEmpty())
        return false;
    const ScopedLock lock(this);
    createData.description = description;
    return true;
}

BackendCreateData BackendInterfaceProvider::getCreateData() const
{
    const ScopedLock lock(this);
    return createData;
}

} // namespace Tessellum::AppConfig::Backends::utils
