#include "SupplyFrame.h"

#include <QDataStream>

namespace {

constexpr quint16 magic = 0x5053;
constexpr quint8 version = 1;

} // namespace

QByteArray SupplyHeader::toBytes() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << magic << version << id << static_cast<quint8>(direction) << status << number << payloadSize
           << paddedSize;
    return bytes;
}

std::optional<SupplyHeader> SupplyHeader::Parse(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    quint16 begin = 0;
    quint8 ofVersion = 0;
    quint8 way = 0;
    SupplyHeader header;
    stream >> begin >> ofVersion >> header.id >> way >> header.status >> header.number >> header.payloadSize
        >> header.paddedSize;
    const bool isSane = stream.status() == QDataStream::Ok && begin == magic && ofVersion == version
        && way <= static_cast<quint8>(Direction::Response) && header.payloadSize <= header.paddedSize
        && header.paddedSize <= LargestPayload;
    header.direction = static_cast<Direction>(way);
    return isSane ? std::make_optional(header) : std::nullopt;
}

QByteArray SupplyFrame::toBytes() const
{
    constexpr int alignment = 4;
    const int padded = (payload.size() + alignment - 1) / alignment * alignment;
    SupplyHeader sent = header;
    sent.payloadSize = static_cast<quint32>(payload.size());
    sent.paddedSize = static_cast<quint32>(padded);
    return sent.toBytes() + payload + QByteArray(padded - payload.size(), '\0');
}
