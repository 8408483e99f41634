#pragma once

#include <QByteArray>

namespace Shared::Conversion {

/*!
 * To the byte what qCompress() gives at its default level and at level 0, for many small contents: that takes
 * 0.3 MB of memory anew for each, which takes far longer than to compress them. Here each thread keeps what
 * it needs until it ends, and nothing is needed at level 0. Any thread may call.
 */
QByteArray Compress(const QByteArray &bytes);
/*! At level 0: the bytes as they are, in the same form. */
QByteArray CompressStored(const QByteArray &bytes);

} // namespace Shared::Conversion
