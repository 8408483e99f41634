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

/*!
 * A text of \a length digits and letters of ASCII, by the C library's generator as it stands: repeatable
 * after srand(), and not for secrets. Any thread.
 */
TESSELLUM_EXPORT QString GetRandomAlphaNumericString(const unsigned int &length);

/*! A pseudo-random number between the two, both included, in whichever order they come. Any thread. */
TESSELLUM_EXPORT int CreateRandomValue(const int &first, const int &second);

/*! \a text without white space of any kind. Any thread. */
TESSELLUM_EXPORT QString RemoveWhiteSpaces(const QString &text);

/*!
 * Makes a file name of \a text that every common file system takes: each of < > : " / \ | ? * becomes
 * \a replacement (an underscore, where that is one of them), a reserved device name such as "COM1" gets it
 * before and behind, and blanks and points at the end go. The result may be empty. Any thread.
 */
TESSELLUM_EXPORT QString ReplaceInvalidFilePathCharacters(const QString &text, const QChar &replacement);

} // namespace Shared
