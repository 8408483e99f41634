#include "FrameReader.h"

#include <algorithm>

using Shared::Communication::DeviceApi::PayloadDecoder;
using Shared::Communication::DeviceApi::ProtocolDecoderState;

QVector<SupplyFrame> FrameReader::take(const QByteArray &bytes)
{
    QVector<SupplyFrame> frames;
    rest += bytes;
    int position = 0; // what is before is cut off once, not frame by frame: there may be thousands
    while (!damaged && (decoder || beginFrame(position))) {
        // Not more than is its own: a decoder takes padding off on top of what it was given.
        QByteArray block = rest.mid(
            position,
            static_cast<int>(std::min<qint64>(decoder->getRemainingBytes(), rest.size() - position)));
        position += block.size();
        if (decoder->appendPayload(block) != ProtocolDecoderState::Complete)
            break;
        frames.append({header, decoder->getDecodedPayload().left(static_cast<int>(header.payloadSize))});
        decoder.reset();
    }
    rest.remove(0, position);
    return frames;
}

/*! Reads a header at \a position, and moves that behind it; false where none has come. */
bool FrameReader::beginFrame(int &position)
{
    if (rest.size() - position < SupplyHeader::Size)
        return false;
    const auto next = SupplyHeader::Parse(rest.mid(position, SupplyHeader::Size));
    damaged = !next;
    if (damaged)
        return false;
    header = *next;
    position += SupplyHeader::Size;
    decoder.emplace(std::make_shared<SupplyHeader>(header));
    return true;
}
