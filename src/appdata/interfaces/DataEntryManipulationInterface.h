#pragma once

#include <appdata/DataTypes.h>
#include <notification/TaskPoints.h>
#include <shared/TessellumExport.h>

#include <QString>
#include <QVariant>

#include <memory>

namespace Tessellum::AppData::Interfaces {

/*!
 * Adds values to one entry and changes them. Each change runs as a task on the pool of the data repository.
 * Threads: any; no lock may be held.
 */
class TESSELLUM_EXPORT DataEntryManipulationInterface
{
public:
    /*!
     * Adds a value, or overwrites the oldest of the ring where the capacity is used up.
     *
     * With CreatePoint::All nothing is waited for. Returns the uuid of the element; empty where the value is
     * not taken. \a index (may be null) becomes the element's position, -1 where it is not known yet.
     */
    virtual QString addDataElementValue(const quint64 &timestamp, const ElementValueKind &kind,
                                        const QVariant &value, const Notification::CreatePoint &point,
                                        qint64 *index = nullptr)
        = 0;
    /*! Starts the change of the active flag; true also where it has that value. */
    virtual bool changeDataElementActivationByUuid(const QString &uuid, const bool &active) = 0;
    virtual bool changeDataElementActivationByIndex(const quint64 &index, const bool &active) = 0;
    /*! The parsed value; null where there is none. */
    virtual std::shared_ptr<QVariant> readDataElementValueByUuid(const QString &uuid) = 0;
    virtual bool writeDataElementValueByUuid(const QString &uuid, const ElementValueKind &kind,
                                             const QVariant &value, const Notification::UpdatePoint &point)
        = 0;
    virtual std::shared_ptr<QVariant> readDataElementValueByIndex(const quint64 &index) = 0;
    virtual bool writeDataElementValueByIndex(const quint64 &index, const ElementValueKind &kind,
                                              const QVariant &value, const Notification::UpdatePoint &point)
        = 0;
    virtual ~DataEntryManipulationInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
