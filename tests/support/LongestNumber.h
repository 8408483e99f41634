#pragma once

#include <shared/localization/DistinctLocalesCache.h>

namespace TestSupport {

/*! The longest beginning of a text that a distinct locale reads, found by trying each length: 0 for none. */
inline int longestNumber(const QString &text, double &value)
{
    const auto locales = Shared::Localization::DistinctLocalesCache::getInstance().distinctLocales();
    for (int length = text.size(); length > 0; --length) {
        // Blanks behind a number are no part of it.
        if (text.at(length - 1).isSpace())
            continue;
        for (const QLocale &locale : locales) {
            bool ok = false;
            const double number = locale.toDouble(QStringView(text).left(length), &ok);
            if (ok) {
                value = number;
                return length;
            }
        }
    }
    return 0;
}

} // namespace TestSupport
