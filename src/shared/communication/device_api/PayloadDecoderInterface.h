#pragma once

#include <shared/TessellumExport.h>

#include <QByteArray>

namespace Shared::Communication::DeviceApi {

/*! How far a message has come. */
enum class ProtocolDecoderState {
    Empty = 0, ///< nothing received
    Partial = 1,
    Complete = 2,
    Invalid = 3, ///< takes nothing more
};

/*! Collects the payload of one message out of blocks of any size. */
class TESSELLUM_EXPORT PayloadDecoderInterface
{
public:
    /*! Takes a block, and out of \a data what was taken; the state that it leads to. */
    virtual ProtocolDecoderState appendPayload(QByteArray &data) = 0;
    /*! What has come of the payload. */
    virtual QByteArray getDecodedPayload() const = 0;
    /*! What came behind the message: the beginning of the next one. */
    virtual QByteArray getUndecodedPayload() const = 0;
    virtual ProtocolDecoderState getState() const = 0;
    /*! Bytes of the payload by the header. */
    virtual quint64 getPayloadSize() const = 0;
    /*! Bytes of payload and padding by the header. */
    virtual quint64 getPayloadPaddedSize() const = 0;
    virtual ~PayloadDecoderInterface() = default;

protected:
    PayloadDecoderInterface() = default;
    PayloadDecoderInterface(const PayloadDecoderInterface &) = default;
    PayloadDecoderInterface &operator=(const PayloadDecoderInterface &) = default;
};

} // namespace Shared::Communication::DeviceApi
