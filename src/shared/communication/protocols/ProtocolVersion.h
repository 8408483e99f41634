#pragma once

#include <QtGlobal>

namespace Shared::Communication::Protocols {

/*! The version of a protocol. */
struct ProtocolVersion
{
    quint16 majorNumber = 0;
    quint16 minorNumber = 0;

    friend constexpr bool operator==(const ProtocolVersion &left, const ProtocolVersion &right)
    {
        return left.majorNumber == right.majorNumber && left.minorNumber == right.minorNumber;
    }
    friend constexpr bool operator!=(const ProtocolVersion &left, const ProtocolVersion &right)
    {
        return !(left == right);
    }
    friend constexpr bool operator<(const ProtocolVersion &left, const ProtocolVersion &right)
    {
        return left.majorNumber != right.majorNumber ? left.majorNumber < right.majorNumber
                                                     : left.minorNumber < right.minorNumber;
    }
};

} // namespace Shared::Communication::Protocols
