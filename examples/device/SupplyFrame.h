#pragma once

#include <shared/communication/protocols/ProtocolDirection.h>
#include <shared/communication/protocols/ProtocolHeaderInterface.h>

#include <QByteArray>
#include <QVector>

#include <optional>

/*!
 * What stands before each message of a power supply, 16 bytes, numbers in network order:
 *
 *     "PS" | version 1 | message id | direction | status | running number (2) | payload (4) | padded payload
 * (4)
 *
 * Behind it comes the payload, filled up with zeros to a multiple of four bytes.
 */
class SupplyHeader : public Shared::Communication::Protocols::ProtocolHeaderInterface
{
public:
    using Direction = Shared::Communication::Protocols::ProtocolDirection;

    static constexpr int Size = 16;
    /*! No message of this device is larger; whoever says so is not believed. */
    static constexpr quint32 LargestPayload = 4096;

    SupplyHeader() = default;
    SupplyHeader(unsigned char messageId, Direction messageDirection)
        : id(messageId)
        , direction(messageDirection)
    { }

    quint64 getPayloadSize() const override { return payloadSize; }
    quint64 getPayloadPaddedSize() const override { return paddedSize; }

    QByteArray toBytes() const;
    /*! Reads the first 16 bytes; nothing where they are no header, or one with sizes that cannot be. */
    static std::optional<SupplyHeader> Parse(const QByteArray &bytes);

    unsigned char id = 0;
    Direction direction = Direction::Request;
    quint8 status = 0; ///< of a response: one of SupplyStatus
    quint16 number = 0; ///< a response has that of its request
    quint32 payloadSize = 0;
    quint32 paddedSize = 0;
};

enum SupplyStatus : quint8 { Done = 0, Refused = 1 };

/*! A message with its header. */
struct SupplyFrame
{
    SupplyHeader header; ///< whose sizes follow the payload when it is sent
    QByteArray payload;

    QByteArray toBytes() const;
};
