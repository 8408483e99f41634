#pragma once

#include <appdata/interfaces/DataEntryManipulationInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle for adding values to an entry and changing them. */
class WrappedEntryManipulationProvider : public Interfaces::DataEntryManipulationInterface,
                                         private WrappedFront<Interfaces::DataEntryManipulationInterface>
{
public:
    using WrappedFront::WrappedFront;

    QString addDataElementValue(const quint64 &timestamp, const ElementValueKind &kind, const QVariant &value,
                                const Notification::CreatePoint &point, qint64 *index) override;
    bool changeDataElementActivationByUuid(const QString &uuid, const bool &active) override;
    bool changeDataElementActivationByIndex(const quint64 &index, const bool &active) override;
    std::shared_ptr<QVariant> readDataElementValueByUuid(const QString &uuid) override;
    bool writeDataElementValueByUuid(const QString &uuid, const ElementValueKind &kind, const QVariant &value,
                                     const Notification::UpdatePoint &point) override;
    std::shared_ptr<QVariant> readDataElementValueByIndex(const quint64 &index) override;
    bool writeDataElementValueByIndex(const quint64 &index, const ElementValueKind &kind,
                                      const QVariant &value, const Notification::UpdatePoint &point) override;
};

} // namespace Tessellum::AppData::utils
