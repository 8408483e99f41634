#pragma once

#include <appdata/DataTypes.h>
#include <notification/TaskPoints.h>
#include <shared/TessellumExport.h>

#include <QVariant>

namespace Tessellum::AppData::Interfaces {

/*!
 * Changes one element. Each change runs as an update task on the pool of the data repository.
 *
 * With UpdatePoint::All an operation starts its task and returns true at once; with any other point it waits
 * and tells whether that point was reached without a fault. Threads: any; no lock may be held.
 */
class TESSELLUM_EXPORT DataElementManipulationInterface
{
public:
    virtual bool setActive(const bool &active, const Notification::UpdatePoint &point) = 0;
    virtual bool setTimestamp(const quint64 &timestamp, const Notification::UpdatePoint &point) = 0;
    /*! Takes raw bytes or a parsed value, as \a kind says. */
    virtual bool setData(const ElementValueKind &kind, const QVariant &value,
                         const Notification::UpdatePoint &point)
        = 0;
    /*! Value, time stamp and active flag in one update. */
    virtual bool setValues(const ElementValueKind &kind, const QVariant &value, const quint64 &timestamp,
                           const bool &active, const Notification::UpdatePoint &point)
        = 0;
    /*! Loads or unloads the parsed value on the calling thread; true if that is then its state. */
    virtual bool performCommand(const ElementCommand &command) = 0;
    virtual ~DataElementManipulationInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
