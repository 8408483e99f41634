#include "FrameReader.h"

#include <algorithm>

using Shared::Communication::DeviceApi::PayloadDecoder;
using Shared::Communication::DeviceApi::ProtocolDecoderState;

QVector<SupplyFrame> FrameReader::take(const QByteArray &bytes)
{
    QVector<SupplyFrame> frames;
    rest += bytes;
    while (!damaged && (decoder || beginFrame())) {
        // Not more than is its own: a decoder takes padding off on top of what it was given.
        QByteArray block
            = rest.left(static_cast<int>(std::min<qint64>(decoder->getRemainingBytes(), rest.size())));
        rest.remove(0, block.size());
        if (decoder->appendPayload(block) != ProtocolDecoderState::Complete)
            break;
        frames.append({header, decoder->getDecodedPayload().left(static_cast<int>(header.payloadSize))});
        decoder.reset();
    }
    return frames;
}

bool FrameReader::beginFrame()
{
    if (rest.size() < SupplyHeader::Size)
        return false;
    const auto next = SupplyHeader::Parse(rest);
    damaged = !next;
    if (damaged)
        return false;
    header = *next;
    rest.remove(0, SupplyHeader::Size);
    decoder.emplace(std::make_shared<SupplyHeader>(header));
    return true;
}
