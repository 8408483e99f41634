#pragma once

#include <appdata/interfaces/DataElementInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle of an element. */
class WrappedElement : public Interfaces::DataElementInterface,
                       private WrappedFront<Interfaces::DataElementInterface>
{
public:
    using WrappedFront::WrappedFront;

    QString getUuid() const override;
    std::shared_ptr<const Interfaces::DataElementQueryInterface> getQueryInterface() const override;
    std::shared_ptr<Interfaces::DataElementQueryInterface> getQueryInterface() override;
    std::shared_ptr<const Interfaces::DataElementManipulationInterface>
    getManipulationInterface() const override;
    std::shared_ptr<Interfaces::DataElementManipulationInterface> getManipulationInterface() override;
};

} // namespace Tessellum::AppData::utils
