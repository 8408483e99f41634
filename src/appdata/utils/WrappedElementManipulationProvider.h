#pragma once

#include <appdata/interfaces/DataElementManipulationInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle for changing an element. */
class WrappedElementManipulationProvider : public Interfaces::DataElementManipulationInterface,
                                           private WrappedFront<Interfaces::DataElementManipulationInterface>
{
public:
    using WrappedFront::WrappedFront;

    bool setActive(const bool &active, const Notification::UpdatePoint &point) override;
    bool setTimestamp(const quint64 &timestamp, const Notification::UpdatePoint &point) override;
    bool setData(const ElementValueKind &kind, const QVariant &value,
                 const Notification::UpdatePoint &point) override;
    bool setValues(const ElementValueKind &kind, const QVariant &value, const quint64 &timestamp,
                   const bool &active, const Notification::UpdatePoint &point) override;
    bool performCommand(const ElementCommand &command) override;
};

} // namespace Tessellum::AppData::utils
