#include <appdata/storages/StorageImplementation.h>

#include <QUuid>

namespace Tessellum::AppData::Storages {

StorageImplementation::StorageImplementation(const StorageCreateData &storageCreateData)
    : HierarchyNodeInstance(QUuid::createUuid().toString())
    , AppDataRepositoryEventThreadUser(this)
    , createData(storageCreateData)
{ }

StorageImplementation::~StorageImplementation() = default;

bool StorageImplementation::updateElement(const QString &entryUuid, const QString &elementUuid,
                                          const ElementValues &values)
{
    for (const DataElementUpdateType &type : values.getUpdateTypes()) {
        if (!updateElementValue(entryUuid, elementUuid, type, values.value(type)))
            return false;
    }
    return true;
}

} // namespace Tessellum::AppData::Storages
