#pragma once

#include <shared/TessellumExport.h>

namespace Shared::Communication::Protocols {

/*! Follows the requests and responses of one message, to say whether a further request may go out. Called on
 * whichever thread the message is used, with no lock held. */
class TESSELLUM_EXPORT ProtocolMessageTrackingInterface
{
public:
    virtual ~ProtocolMessageTrackingInterface() = default;

    /*! A request goes out. */
    virtual void trackRequest() = 0;
    /*! A response has come. */
    virtual void trackResponse() = 0;
    virtual bool canProcessRequest() const = 0;

protected:
    ProtocolMessageTrackingInterface() = default;
    ProtocolMessageTrackingInterface(const ProtocolMessageTrackingInterface &) = default;
    ProtocolMessageTrackingInterface &operator=(const ProtocolMessageTrackingInterface &) = default;
};

} // namespace Shared::Communication::Protocols
