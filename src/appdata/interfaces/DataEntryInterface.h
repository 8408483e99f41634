#pragma once

#include <appdata/interfaces/DataEntryCategoryInterface.h>
#include <appdata/interfaces/DataEntryManipulationInterface.h>
#include <appdata/interfaces/DataEntryMemoryStrategyInterface.h>
#include <appdata/interfaces/DataEntryQueryInterface.h>

namespace Tessellum::AppData::Interfaces {

/*! A named, typed series of elements. Threads: any. The interfaces that it gives keep what they act on alive.
 */
class TESSELLUM_EXPORT DataEntryInterface
{
public:
    virtual QString getName() const = 0;
    virtual QString getUuid() const = 0;
    /*! Empty for a volatile entry. */
    virtual QString getStorageName() const = 0;
    virtual std::shared_ptr<DataEntryCategoryInterface> getCategory() const = 0;
    virtual QString getClassification() const = 0;
    virtual PersistenceType getPersistenceType() const = 0;
    /*! Always true. */
    virtual bool setPersistenceType(const PersistenceType &type) = 0;
    virtual LoadStatus getLoadStatus() const = 0;
    /*! Whether the capacity is 1. */
    virtual bool isSingleElementEntry() const = 0;
    /*! The most elements; 0 is no limit. */
    virtual quint64 getCapacity() const = 0;
    virtual std::shared_ptr<const DataEntryManipulationInterface> getManipulationInterface() const = 0;
    virtual std::shared_ptr<DataEntryManipulationInterface> getManipulationInterface() = 0;
    virtual std::shared_ptr<const DataEntryQueryInterface> getQueryInterface() const = 0;
    virtual std::shared_ptr<DataEntryQueryInterface> getQueryInterface() = 0;
    virtual std::shared_ptr<const DataEntryMemoryStrategyInterface> getMemoryStrategyInterface() const = 0;
    virtual std::shared_ptr<DataEntryMemoryStrategyInterface> getMemoryStrategyInterface() = 0;
    virtual ~DataEntryInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
