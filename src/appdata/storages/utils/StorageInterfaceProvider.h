#pragma once

#include <appdata/interfaces/StorageInterface.h>
#include <appdata/storages/StorageCreateData.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

namespace Tessellum::AppData::Storages::utils {

/*! The facts of a storage, guarded by the lock of its node. The node's id is a fresh uuid, never the name. */
class TESSELLUM_EXPORT StorageInterfaceProvider : public Shared::Hierarchy::HierarchyNodeInstance,
                                                  public Interfaces::StorageInterface,
                                                  public Shared::PropertyContainer<StorageCreateData>,
                                                  public AppData::utils::AppDataRepositoryEventThreadUser
{
    Q_OBJECT

public:
    explicit StorageInterfaceProvider(const StorageCreateData &data);
    ~StorageInterfaceProvider() override;

    QString getType() const override;
    QStringList getEntryTypes() const override;
    QString getLabel() const override;
    bool setLabel(const QString &label) override;
    QString getName() const override;
    QString getId() const override;
    LoadStatus getLoadStatus() const override;
    /*! False, with nothing changed, for LoadStatus::Unknown. */
    virtual bool setLoadStatus(const LoadStatus &status);

    /*! Never null. */
    std::shared_ptr<StorageImplementation> getImplementation() const { return data.implementation; }
    int getMode() const { return data.mode; }
    LoadDataHint getLoadDataHint() const { return data.loadDataHint; }

private:
    StorageCreateData data; // the label alone changes
    LoadStatus loadStatus = LoadStatus::NotLoaded;
};

} // namespace Tessellum::AppData::Storages::utils
