#pragma once

#include <appdata/DataTypes.h>
#include <shared/synchronization/PropertyContainer.h>

#include <QString>
#include <QVariant>

#include <memory>

namespace Tessellum::AppData::Storages {

class StorageImplementation;

/*! What a storage is made from besides its type, name and label. */
struct StorageCreateDataDetails
{
    std::shared_ptr<StorageImplementation>
        implementation; /*!< Set: used as it is, and no factory is asked. */
    qint32 mode = 0; /*!< For the implementation alone. */
    LoadDataHint loadDataHint = LoadDataHint::OnDemand; /*!< LoadAtOnce: all entries are attached. */
    QVariant location; /*!< Where the data lies, in the implementation's own form. */
};

/*! The record that describes a storage. */
class TESSELLUM_EXPORT StorageCreateData : public Shared::PropertyContainer<StorageCreateData>
{
public:
    StorageCreateData() = default;
    StorageCreateData(const QString &storageName, const QString &storageType, const QString &storageLabel,
                      const StorageCreateDataDetails &details)
        : name(storageName)
        , type(storageType)
        , label(storageLabel)
        , implementation(details.implementation)
        , mode(details.mode)
        , loadDataHint(details.loadDataHint)
        , location(details.location)
    { }

    QString name; /*!< By which the application finds the storage. */
    QString type; /*!< The key of the factory. */
    QString label; /*!< Free text. */
    std::shared_ptr<StorageImplementation> implementation;
    qint32 mode = 0;
    LoadDataHint loadDataHint = LoadDataHint::OnDemand;
    QVariant location;
};

} // namespace Tessellum::AppData::Storages

Q_DECLARE_METATYPE(Tessellum::AppData::Storages::StorageCreateData)
