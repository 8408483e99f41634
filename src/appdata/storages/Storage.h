#pragma once

#include <appdata/storages/utils/StorageInterfaceProvider.h>

namespace Tessellum::AppData::utils {
class LoadStatusMirror;
}

namespace Tessellum::AppData::Storages {

class StorageManipulationProvider;
class StorageQueryProvider;

/*! The node of one place where entries persist; its children are the entries that are attached. The medium
 * itself is the implementation's. */
class TESSELLUM_EXPORT Storage : public utils::StorageInterfaceProvider
{
    Q_OBJECT

public:
    /*! \a data holds an implementation. */
    explicit Storage(const StorageCreateData &data);
    ~Storage() override;

    std::shared_ptr<const Interfaces::StorageManipulationInterface> getManipulationInterface() const override;
    std::shared_ptr<Interfaces::StorageManipulationInterface> getManipulationInterface() override;
    std::shared_ptr<const Interfaces::StorageQueryInterface> getQueryInterface() const override;
    std::shared_ptr<Interfaces::StorageQueryInterface> getQueryInterface() override;

    /*! Also shows the status in the configuration, without waiting. No lock may be held. */
    bool setLoadStatus(const LoadStatus &status) override;

private:
    const std::shared_ptr<StorageManipulationProvider> manipulationProvider;
    const std::shared_ptr<StorageQueryProvider> queryProvider;
    std::shared_ptr<AppData::utils::LoadStatusMirror> mirror;
};

} // namespace Tessellum::AppData::Storages
