#pragma once

#include <QString>

namespace Tessellum::Notification::Interfaces {

/*!
 * What an application holds for one registered handler; without it the registration ends. Any thread may
 * call, the handler itself included. Once the handler is gone the operations return false, 0 or an empty
 * text.
 */
class NotificationHandleInterface
{
public:
    /*!
     * Ends the handler for good: after the return it is not running and will not run. Waits for a running
     * handler, except from inside that handler, or where the two would wait for each other. Hold no lock.
     */
    virtual void invalidate() = 0;
    /*! False after invalidate() or an unregistration. */
    virtual bool isValid() const = 0;
    /*! Always 1. */
    virtual int getHandleType() const = 0;
    /*! True if valid and not switched off. */
    virtual bool isEnabled() const = 0;
    /*! Names the registration to the unregister operations. */
    virtual QString getUuid() const = 0;
    /*! The path, with wildcards, that was registered. */
    virtual QString getPath() const = 0;
    /*! Switches the handler off or on again; what is reported while it is off is lost to it. Returns true. */
    virtual bool setEnabled(const bool &enabled) = 0;
    virtual ~NotificationHandleInterface() = default;
};

} // namespace Tessellum::Notification::Interfaces
