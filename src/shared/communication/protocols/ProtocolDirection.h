#pragma once

#include <QtGlobal>

namespace Shared::Communication::Protocols {

/*! Which way a message goes. */
enum class ProtocolDirection {
    Request = 0, ///< to the device
    Response = 1, ///< from the device
};

/*! For tables by direction. */
inline uint qHash(ProtocolDirection direction, uint seed = 0) noexcept
{
    return static_cast<uint>(direction) ^ seed;
}

} // namespace Shared::Communication::Protocols
