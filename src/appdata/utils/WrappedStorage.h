#pragma once

#include <appdata/interfaces/StorageInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle of a storage. */
class WrappedStorage : public Interfaces::StorageInterface, private WrappedFront<Interfaces::StorageInterface>
{
public:
    using WrappedFront::WrappedFront;

    QString getType() const override;
    QStringList getEntryTypes() const override;
    QString getLabel() const override;
    bool setLabel(const QString &label) override;
    QString getName() const override;
    QString getId() const override;
    LoadStatus getLoadStatus() const override;
    std::shared_ptr<const Interfaces::StorageManipulationInterface> getManipulationInterface() const override;
    std::shared_ptr<Interfaces::StorageManipulationInterface> getManipulationInterface() override;
    std::shared_ptr<const Interfaces::StorageQueryInterface> getQueryInterface() const override;
    std::shared_ptr<Interfaces::StorageQueryInterface> getQueryInterface() override;
};

} // namespace Tessellum::AppData::utils
