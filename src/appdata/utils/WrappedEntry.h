#pragma once

#include <appdata/interfaces/DataEntryInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle of an entry. */
class WrappedEntry : public Interfaces::DataEntryInterface,
                     private WrappedFront<Interfaces::DataEntryInterface>
{
public:
    using WrappedFront::WrappedFront;

    QString getName() const override;
    QString getUuid() const override;
    QString getStorageName() const override;
    std::shared_ptr<Interfaces::DataEntryCategoryInterface> getCategory() const override;
    QString getClassification() const override;
    PersistenceType getPersistenceType() const override;
    bool setPersistenceType(const PersistenceType &type) override;
    LoadStatus getLoadStatus() const override;
    bool isSingleElementEntry() const override;
    quint64 getCapacity() const override;
    std::shared_ptr<const Interfaces::DataEntryManipulationInterface>
    getManipulationInterface() const override;
    std::shared_ptr<Interfaces::DataEntryManipulationInterface> getManipulationInterface() override;
    std::shared_ptr<const Interfaces::DataEntryQueryInterface> getQueryInterface() const override;
    std::shared_ptr<Interfaces::DataEntryQueryInterface> getQueryInterface() override;
    std::shared_ptr<const Interfaces::DataEntryMemoryStrategyInterface>
    getMemoryStrategyInterface() const override;
    std::shared_ptr<Interfaces::DataEntryMemoryStrategyInterface> getMemoryStrategyInterface() override;
};

} // namespace Tessellum::AppData::utils
