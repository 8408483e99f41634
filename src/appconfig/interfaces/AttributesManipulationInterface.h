#pragma once

#include <appconfig/interfaces/CustomAttributeDataInterface.h>
#include <notification/TaskPoints.h>

#include <QString>

#include <memory>

namespace Tessellum::AppConfig::Interfaces {

/*!
 * Creates, updates and deletes attributes, each by a task that the call waits for up to its wait point.
 *
 * The point All releases the caller at the task's first report, Done at its end, and a failure at once.
 * Threads: any, handlers and tasks too.
 */
class TESSELLUM_EXPORT AttributesManipulationInterface
{
public:
    /*! Creates the attribute, or overwrites the one at \a path. \a access: bits of AttributeAccess. */
    virtual bool createAttribute(const QString &path, const QVariant &value,
                                 const Notification::CreatePoint &waitPoint, const int &access)
        = 0;
    /*! As above with \a data in place of the stored value, as far as \a access asks; null \a data is false.
     */
    virtual bool createAttribute(const QString &path, const QVariant &value,
                                 const std::shared_ptr<CustomAttributeDataInterface> &data,
                                 const Notification::CreatePoint &waitPoint, const int &access)
        = 0;
    /*! Updates the node at \a path; what is missing is created if the settings say so, otherwise NodeGone. */
    virtual Notification::UpdateResult updateAttribute(const QString &path, const QVariant &value,
                                                       const Notification::UpdatePoint &waitPoint)
        = 0;
    /*! Deletes the attribute at \a path with all beneath it; false if none is there. */
    virtual bool deleteAttribute(const QString &path, const Notification::DeletePoint &waitPoint) = 0;
    virtual ~AttributesManipulationInterface() = default;
};

} // namespace Tessellum::AppConfig::Interfaces
