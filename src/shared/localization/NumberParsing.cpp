#include <shared/localization/DistinctLocalesCache.h>
#include <shared/localization/NumberParsing.h>
#include <shared/localization/utils/NumberScan.h>

#include <algorithm>

namespace Shared::Localization {

namespace {

bool read(const QLocale &locale, QStringView text, double &value)
{
    bool ok = false;
    const double number = locale.toDouble(text, &ok);
    if (ok)
        value = number;
    return ok;
}

} // namespace

bool ParseNumber(const QString &text, double &value)
{
    const auto locales = DistinctLocalesCache::getInstance().distinctLocales();
    return std::any_of(locales.begin(), locales.end(),
                       [&](const QLocale &locale) { return read(locale, text, value); });
}

int ParseLeadingNumber(const QString &text, double &value)
{
    const QStringView view(text);
    int longest = 0;
    const auto locales = DistinctLocalesCache::getInstance().distinctLocales();
    for (const QLocale &locale : locales) {
        // The first try is the last one, unless the locale refuses what other locales take.
        for (int length = utils::NumberScan(locale, view).longest(); length > longest; --length) {
            if (read(locale, view.left(length), value))
                longest = length;
        }
    }
    return longest;
}

} // namespace Shared::Localization
