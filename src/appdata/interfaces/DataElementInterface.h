#pragma once

#include <appdata/interfaces/DataElementManipulationInterface.h>
#include <appdata/interfaces/DataElementQueryInterface.h>

#include <QString>

#include <memory>

namespace Tessellum::AppData::Interfaces {

/*! One time-stamped value. Threads: any. The interfaces that it gives keep what they act on alive. */
class TESSELLUM_EXPORT DataElementInterface
{
public:
    virtual QString getUuid() const = 0;
    virtual std::shared_ptr<const DataElementQueryInterface> getQueryInterface() const = 0;
    virtual std::shared_ptr<DataElementQueryInterface> getQueryInterface() = 0;
    virtual std::shared_ptr<const DataElementManipulationInterface> getManipulationInterface() const = 0;
    virtual std::shared_ptr<DataElementManipulationInterface> getManipulationInterface() = 0;
    virtual ~DataElementInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
