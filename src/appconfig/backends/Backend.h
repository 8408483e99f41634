#pragma once

#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/backends/BackendInterfaceProvider.h>
#include <notification/TaskPoints.h>
#include <notification/ThreadPool.h>

namespace Tessellum::AppConfig::Backends {

/*!
 * A node that is a source of attributes. The contract of every backend, plug-ins too.
 *
 * Threads: loading and saving run on a thread of the configuration's pool or on the caller of saveBackend(),
 * with no lock held. An exception that leaves them is caught and counts as a failure.
 */
class TESSELLUM_EXPORT Backend : public utils::BackendInterfaceProvider
{
    Q_OBJECT
public:
    using BackendInterfaceProvider::BackendInterfaceProvider;

    /*! Turns the source's values into attributes beneath this node and waits for them; false drops the
     * backend. */
    virtual bool loadAttributes(Notification::ThreadPool &pool, const Notification::CreatePoint &waitPoint);
    /*! Writes the attributes beneath this node to the source; false if there is no such thing or it failed.
     */
    virtual bool saveAttributes() = 0;
    /*! Appends the source's values to \a out; true if the source was acceptable, also without any value. */
    virtual bool loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                                  const Notification::CreatePoint &waitPoint);
};

} // namespace Tessellum::AppConfig::Backends
