#pragma once

#include <QtGlobal>

#include <cstddef>

namespace Shared::Foundation::Platform {

/*!
 * When this process began, in the system's clock ticks since its start: tells two processes with one number
 * apart. 0 where the system does not say.
 */
quint64 ProcessStartTime();

/*!
 * Copies size bytes at an address of this process, which need not be mapped. False when they cannot be read.
 */
bool ReadOwnMemory(quint64 address, void *target, std::size_t size);

} // namespace Shared::Foundation::Platform
