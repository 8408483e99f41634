#include <appdata/utils/WrappedElementManipulationProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::DataElementManipulationInterface;
using Notification::UpdatePoint;

bool WrappedElementManipulationProvider::setActive(const bool &active, const UpdatePoint &point)
{
    return writing(
        [&](DataElementManipulationInterface &element) { return element.setActive(active, point); });
}

bool WrappedElementManipulationProvider::setTimestamp(const quint64 &timestamp, const UpdatePoint &point)
{
    return writing(
        [&](DataElementManipulationInterface &element) { return element.setTimestamp(timestamp, point); });
}

bool WrappedElementManipulationProvider::setData(const ElementValueKind &kind, const QVariant &value,
                                                 const UpdatePoint &point)
{
    return writing(
        [&](DataElementManipulationInterface &element) { return element.setData(kind, value, point); });
}

bool WrappedElementManipulationProvider::setValues(const ElementValueKind &kind, const QVariant &value,
                                                   const quint64 &timestamp, const bool &active,
                                                   const UpdatePoint &point)
{
    return writing([&](DataElementManipulationInterface &element) {
        return element.setValues(kind, value, timestamp, active, point);
    });
}

bool WrappedElementManipulationProvider::performCommand(const ElementCommand &command)
{
    return writing(
        [&](DataElementManipulationInterface &element) { return element.performCommand(command); });
}

} // namespace Tessellum::AppData::utils
