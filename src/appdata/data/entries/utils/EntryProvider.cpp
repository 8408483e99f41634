#include <appdata/data/entries/utils/EntryProvider.h>
#include <shared/synchronization/ScopedLock.h>

namespace Tessellum::AppData::Data::Entries::utils {

using Shared::Synchronization::ScopedLock;

EntryProvider::EntryProvider(const EntryData &entryData, const Shared::Hierarchy::HierarchyNode &node)
    : data(entryData)
    , lock(node)
{ }

EntryProvider::~EntryProvider() = default;

QString EntryProvider::getName() const
{
    const ScopedLock scope(&lock);
    return data.serialize.name;
}

QString EntryProvider::getUuid() const
{
    const ScopedLock scope(&lock);
    return data.deserialize.uuid;
}

QString EntryProvider::getStorageName() const
{
    const ScopedLock scope(&lock);
    return data.serialize.storageName;
}

std::shared_ptr<Interfaces::DataEntryCategoryInterface> EntryProvider::getCategory() const
{
    const ScopedLock scope(&lock);
    return std::make_shared<EntryCategory>(data.serialize.category);
}

QString EntryProvider::getClassification() const
{
    const ScopedLock scope(&lock);
    return data.serialize.classification;
}

PersistenceType EntryProvider::getPersistenceType() const
{
    const ScopedLock scope(&lock);
    return data.serialize.persistence;
}

bool EntryProvider::setPersistenceType(const PersistenceType &type)
{
    const ScopedLock scope(&lock);
    data.serialize.persistence = type;
    return true;
}

LoadStatus EntryProvider::getLoadStatus() const
{
    const ScopedLock scope(&lock);
    return loadStatus;
}

bool EntryProvider::isSingleElementEntry() const
{
    return getCapacity() == 1;
}

quint64 EntryProvider::getCapacity() const
{
    const ScopedLock scope(&lock);
    return data.serialize.capacity;
}

bool EntryProvider::setLoadStatus(const LoadStatus &status)
{
    if (status == LoadStatus::Unknown)
        return false;
    const ScopedLock scope(&lock);
    loadStatus = status;
    return true;
}

EntryData EntryProvider::copyData() const
{
    const ScopedLock scope(&lock);
    return data;
}

} // namespace Tessellum::AppData::Data::Entries::utils
