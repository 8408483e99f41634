#include <appdata/utils/WrappedEntryManipulationProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::DataEntryManipulationInterface;
using Notification::UpdatePoint;

QString WrappedEntryManipulationProvider::addDataElementValue(const quint64 &timestamp,
                                                              const ElementValueKind &kind,
                                                              const QVariant &value,
                                                              const Notification::CreatePoint &point,
                                                              qint64 *index)
{
    if (index)
        *index = -1;
    return writing([&](DataEntryManipulationInterface &entry) {
        return entry.addDataElementValue(timestamp, kind, value, point, index);
    });
}

bool WrappedEntryManipulationProvider::changeDataElementActivationByUuid(const QString &uuid,
                                                                         const bool &active)
{
    return writing([&](DataEntryManipulationInterface &entry) {
        return entry.changeDataElementActivationByUuid(uuid, active);
    });
}

bool WrappedEntryManipulationProvider::changeDataElementActivationByIndex(const quint64 &index,
                                                                          const bool &active)
{
    return writing([&](DataEntryManipulationInterface &entry) {
        return entry.changeDataElementActivationByIndex(index, active);
    });
}

std::shared_ptr<QVariant> WrappedEntryManipulationProvider::readDataElementValueByUuid(const QString &uuid)
{
    return reading(
        [&](DataEntryManipulationInterface &entry) { return entry.readDataElementValueByUuid(uuid); });
}

bool WrappedEntryManipulationProvider::writeDataElementValueByUuid(const QString &uuid,
                                                                   const ElementValueKind &kind,
                                                                   const QVariant &value,
                                                                   const UpdatePoint &point)
{
    return writing([&](DataEntryManipulationInterface &entry) {
        return entry.writeDataElementValueByUuid(uuid, kind, value, point);
    });
}

std::shared_ptr<QVariant> WrappedEntryManipulationProvider::readDataElementValueByIndex(const quint64 &index)
{
    return reading(
        [&](DataEntryManipulationInterface &entry) { return entry.readDataElementValueByIndex(index); });
}

bool WrappedEntryManipulationProvider::writeDataElementValueByIndex(const quint64 &index,
                                                                    const ElementValueKind &kind,
                                                                    const QVariant &value,
                                                                    const UpdatePoint &point)
{
    return writing([&](DataEntryManipulationInterface &entry) {
        return entry.writeDataElementValueByIndex(index, kind, value, point);
    });
}

} // namespace Tessellum::AppData::utils
