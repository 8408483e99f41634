#pragma once

#include <shared/TessellumExport.h>

#include <QString>

namespace Shared {

/*! True if \a text holds one of the wildcards \c * and \c ?. Any thread. */
TESSELLUM_EXPORT bool IsWildcardString(const QString &text);

/*!
 * True if \a pattern matches the whole of \a text: \c * stands for any run of characters, also an empty one,
 * \c ? for exactly one, everything else for itself, case sensitive. Both end with a null character; a null
 * pointer matches nothing. Any thread.
 */
TESSELLUM_EXPORT bool WildcardStringCompare(const QChar *text, const QChar *pattern);

} // namespace Shared
