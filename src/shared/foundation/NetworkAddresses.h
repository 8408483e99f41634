#pragma once

#include <shared/TessellumExport.h>

#include <QString>

namespace Shared {

/*!
 * The number of an IPv4 address in dotted form, its first part in the highest byte. Zeros in front of a part
 * do not make it octal; a part that is no number counts as 0; what is no address gives 0. Any thread.
 */
TESSELLUM_EXPORT unsigned int ConvertIPStringToIP(const QString &text);

/*! The dotted form of an IPv4 address. Any thread. */
TESSELLUM_EXPORT QString ConvertIPToIPString(const unsigned int &address);

/*! The dotted form without zeros in front: what ConvertIPStringToIP() understands of \a text. Any thread. */
TESSELLUM_EXPORT QString NormalizeIPString(const QString &text);

} // namespace Shared
