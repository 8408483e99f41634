#pragma once

#include <shared/TessellumExport.h>

#include <QString>

namespace Shared::Localization {

/*!
 * Reads the whole of \a text under the first of the distinct locales that takes it as a number. False, with
 * \a value untouched, if none does. Any thread.
 */
TESSELLUM_EXPORT bool ParseNumber(const QString &text, double &value);

/*!
 * Reads the longest beginning of \a text that one of the distinct locales takes as a number; of locales that
 * take equally much the first one counts. Returns its length, 0 with \a value untouched if there is none. The
 * time is linear in the length of the text. Any thread.
 */
TESSELLUM_EXPORT int ParseLeadingNumber(const QString &text, double &value);

} // namespace Shared::Localization
