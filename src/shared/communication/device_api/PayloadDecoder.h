#pragma once

#include <shared/communication/device_api/PayloadDecoderInterface.h>
#include <shared/communication/protocols/ProtocolHeaderInterface.h>

#include <memory>

namespace Shared::Communication::DeviceApi {

/*!
 * The decoder for payloads with padding behind them, whose header was read before.
 *
 * Up to the padded size everything goes into the decoded bytes, so that padding that comes along with its
 * payload stands at their end: take the first getPayloadSize() of them. A decoder holds what the peer sends
 * in memory; who reads the header refuses what is too much.
 *
 * Threads: one at a time.
 */
class TESSELLUM_EXPORT PayloadDecoder : public PayloadDecoderInterface
{
public:
    /*! Without a header the payload is empty. */
    explicit PayloadDecoder(const std::shared_ptr<Protocols::ProtocolHeaderInterface> &header);

    /*! What is complete leaves \a data as it is and keeps a copy; what is invalid takes nothing. */
    ProtocolDecoderState appendPayload(QByteArray &data) override;
    QByteArray getDecodedPayload() const override;
    QByteArray getUndecodedPayload() const override;
    ProtocolDecoderState getState() const override;
    quint64 getPayloadSize() const override;
    quint64 getPayloadPaddedSize() const override;

    /*! What is still to come of the message; 0, with a critical line in the log, where more has come. */
    qint64 getRemainingBytes() const;
    /*! How many bytes of padding were dropped. */
    qint64 getDiscardedPaddingBytesCount() const;
    /*! Takes \a count bytes, or as many as there are, from the front of \a data; how many they were. */
    static qint64 dropPaddingBytes(QByteArray &data, qint64 count);

protected:
    /*! For decoders that find the payload wrong (Invalid). */
    void setState(ProtocolDecoderState next) { state = next; }

private:
    void takeMessage(QByteArray &data, qint64 remaining);

    std::shared_ptr<Protocols::ProtocolHeaderInterface> messageHeader;
    ProtocolDecoderState state = ProtocolDecoderState::Empty;
    QByteArray decoded;
    QByteArray undecoded;
    qint64 paddingToDrop = 0;
};

} // namespace Shared::Communication::DeviceApi
