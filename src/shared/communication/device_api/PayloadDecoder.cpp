#include <shared/communication/device_api/PayloadDecoder.h>
#include <shared/logging/FrameworkLog.h>

#include <algorithm>
#include <limits>

namespace Shared::Communication::DeviceApi {

using Logging::FrameworkLog;

namespace {

/*! A size that a peer told, as one to calculate with. */
qint64 toSigned(quint64 size)
{
    return static_cast<qint64>(std::min<quint64>(size, std::numeric_limits<qint64>::max()));
}

/*! Whether a byte array can hold both. */
bool fitTogether(const QByteArray &first, const QByteArray &second)
{
    constexpr qint64 overhead = 64; // of the array's own, and to spare
    return qint64(first.size()) + second.size() <= std::numeric_limits<int>::max() - overhead;
}

/*! Swaps the two. What is kept are bytes of its own: a block may be a view of a buffer that is soon filled
 * again. */
void exchange(QByteArray &block, QByteArray &kept)
{
    block.swap(kept);
    kept.detach();
}

} // namespace

PayloadDecoder::PayloadDecoder(const std::shared_ptr<Protocols::ProtocolHeaderInterface> &header)
    : messageHeader(header)
    , paddingToDrop(std::max<qint64>(toSigned(getPayloadPaddedSize()) - toSigned(getPayloadSize()), 0))
{ }

ProtocolDecoderState PayloadDecoder::appendPayload(QByteArray &data)
{
    if (state == ProtocolDecoderState::Invalid)
        return state;
    const bool isComplete = state == ProtocolDecoderState::Complete;
    if (!fitTogether(undecoded, data) || (!isComplete && !fitTogether(decoded, data))) {
        FrameworkLog().critical() << "PayloadDecoder::appendPayload() cannot hold more than "
                                  << std::max(decoded.size(), undecoded.size()) << " bytes";
        return state = ProtocolDecoderState::Invalid;
    }
    if (isComplete) {
        undecoded.append(data);
        return state;
    }
    const qint64 remaining = getRemainingBytes();
    switch (state) {
    case ProtocolDecoderState::Empty:
        if (remaining < data.size())
            takeMessage(data, remaining);
        else
            exchange(data, decoded);
        break;
    case ProtocolDecoderState::Partial:
        if (remaining < data.size())
            takeMessage(data, remaining);
        else
            decoded.append(data);
        data.clear();
        break;
    default:
        FrameworkLog().critical() << "PayloadDecoder::appendPayload() invalid parser state="
                                  << static_cast<int>(state) << " detected, abort appending new data";
        return state = ProtocolDecoderState::Invalid;
    }
    state = getRemainingBytes() != 0 ? ProtocolDecoderState::Partial : ProtocolDecoderState::Complete;
    return state;
}

/*! Takes the rest of the message from the front of \a data, and keeps what is behind it. */
void PayloadDecoder::takeMessage(QByteArray &data, qint64 remaining)
{
    const int size = static_cast<int>(remaining);
    decoded.append(data.constData(), size);
    data.remove(0, size);
    paddingToDrop -= dropPaddingBytes(data, paddingToDrop);
    if (undecoded.isEmpty() && !data.isEmpty())
        exchange(data, undecoded);
    else
        undecoded.append(data);
}

QByteArray PayloadDecoder::getDecodedPayload() const
{
    return decoded;
}

QByteArray PayloadDecoder::getUndecodedPayload() const
{
    return undecoded;
}

ProtocolDecoderState PayloadDecoder::getState() const
{
    return state;
}

quint64 PayloadDecoder::getPayloadSize() const
{
    return messageHeader ? messageHeader->getPayloadSize() : 0;
}

quint64 PayloadDecoder::getPayloadPaddedSize() const
{
    return messageHeader ? messageHeader->getPayloadPaddedSize() : 0;
}

qint64 PayloadDecoder::getRemainingBytes() const
{
    const qint64 received = decoded.size() + getDiscardedPaddingBytesCount();
    const qint64 padded = toSigned(getPayloadPaddedSize());
    if (padded >= received)
        return padded - received;
    FrameworkLog().critical() << "PayloadDecoder::getRemainingBytes() parsed more bytes=" << received
                              << " than expected=" << padded;
    return 0;
}

qint64 PayloadDecoder::getDiscardedPaddingBytesCount() const
{
    // Less padding than none means that the header says less of both than of the payload.
    return messageHeader
        ? std::max<qint64>(toSigned(getPayloadPaddedSize()) - paddingToDrop - toSigned(getPayloadSize()), 0)
        : 0;
}

qint64 PayloadDecoder::dropPaddingBytes(QByteArray &data, qint64 count)
{
    const qint64 dropped = std::clamp<qint64>(count, 0, data.size());
    data.remove(0, static_cast<int>(dropped));
    return dropped;
}

} // namespace Shared::Communication::DeviceApi
