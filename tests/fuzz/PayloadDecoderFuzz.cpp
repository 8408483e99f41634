// The payload of a message: whatever sizes a header tells and however the bytes are cut, none is lost or
// invented. An input is the payload's size and the padded size, eight bytes each, and blocks behind the byte
// of their length.
#include "FuzzInput.h"

#include <shared/communication/device_api/PayloadDecoder.h>
#include <shared/logging/LogHandler.h>

#include <QtEndian>

using namespace Shared::Communication;
using DeviceApi::ProtocolDecoderState;

namespace {

struct Header : Protocols::ProtocolHeaderInterface
{
    explicit Header(const unsigned char *bytes)
        : payload(qFromBigEndian<quint64>(bytes))
        , padded(qFromBigEndian<quint64>(bytes + sizeof(quint64)))
    { }
    quint64 getPayloadSize() const override { return payload; }
    quint64 getPayloadPaddedSize() const override { return padded; }

    const quint64 payload;
    const quint64 padded;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    constexpr size_t headerSize = 2 * sizeof(quint64);
    if (size < headerSize)
        return 0;
    const auto header = std::make_shared<Header>(bytes);
    DeviceApi::PayloadDecoder decoder(header);
    const QByteArray all(reinterpret_cast<const char *>(bytes + headerSize), int(size - headerSize));
    QByteArray given;
    for (int at = 0; at < all.size();) {
        const int length = static_cast<unsigned char>(all.at(at));
        QByteArray block = all.mid(at + 1, length);
        at += 1 + length;
        given += block;
        const auto before = decoder.getState();
        const auto state = decoder.appendPayload(block);
        Fuzz::Require(state == decoder.getState() && state >= before);
        Fuzz::Require(state == ProtocolDecoderState::Partial || state == ProtocolDecoderState::Complete);
        Fuzz::Require(block.isEmpty() || before == ProtocolDecoderState::Complete);
        const QByteArray decoded = decoder.getDecodedPayload();
        const QByteArray undecoded = decoder.getUndecodedPayload();
        Fuzz::Require(quint64(decoded.size()) <= header->padded);
        Fuzz::Require(given.startsWith(decoded) && given.endsWith(undecoded));
        Fuzz::Require(decoded.size() + decoder.getDiscardedPaddingBytesCount() + undecoded.size()
                      == given.size());
        Fuzz::Require((state == ProtocolDecoderState::Complete) == (decoder.getRemainingBytes() == 0));
    }
    return 0;
}
