#pragma once

#include <appdata/storages/StorageImplementation.h>
#include <notification/utils/MakeNode.h>
#include <shared/synchronization/Factory.h>

#include <QStringList>

#include <functional>
#include <memory>

namespace Tessellum::AppData::Storages {

/*! The table of storage classes by type key. */
using StorageFactory
    = Shared::Factory<StorageImplementation, QString, std::shared_ptr<StorageImplementation>,
                      std::function<std::shared_ptr<StorageImplementation>(const StorageCreateData &)>>;

/*! Enters \a StorageType under those of \a keys that are still free; the number of keys entered. */
template <class StorageType>
int RegisterStorage(StorageFactory &factory, const QStringList &keys)
{
    int added = 0;
    for (const QString &key : keys) {
        const auto creator = [](const StorageCreateData &data) -> std::shared_ptr<StorageImplementation> {
            return Notification::utils::MakeNode<StorageType>(data);
        };
        if (factory.registerProduct(key, creator))
            ++added;
    }
    return added;
}

} // namespace Tessellum::AppData::Storages
