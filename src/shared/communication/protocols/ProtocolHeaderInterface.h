#pragma once

#include <shared/TessellumExport.h>

#include <QtGlobal>

namespace Shared::Communication::Protocols {

/*! The header of a message, as far as every protocol has it: how long what follows is. Concrete headers add
 * what else they hold. */
class TESSELLUM_EXPORT ProtocolHeaderInterface
{
public:
    virtual ~ProtocolHeaderInterface() = default;

    /*! The bytes of the payload. */
    virtual quint64 getPayloadSize() const = 0;
    /*! The bytes of the payload with the padding behind it. What a peer sent may say anything, also less than
     * the payload. */
    virtual quint64 getPayloadPaddedSize() const = 0;

protected:
    ProtocolHeaderInterface() = default;
    ProtocolHeaderInterface(const ProtocolHeaderInterface &) = default;
    ProtocolHeaderInterface &operator=(const ProtocolHeaderInterface &) = default;
};

} // namespace Shared::Communication::Protocols
