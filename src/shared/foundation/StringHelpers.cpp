#include "StringHelpers.h"

namespace Shared {

namespace {

constexpr QChar AnyRun = QLatin1Char('*');
constexpr QChar AnyCharacter = QLatin1Char('?');

} // namespace

bool IsWildcardString(const QString &text)
{
    return text.contains(AnyRun) || text.contains(AnyCharacter);
}

bool WildcardStringCompare(const QChar *text, const QChar *pattern)
{
    if (!text || !pattern)
        return false;

    // Only the last star needs to be tried again: what an earlier one could take, the last one can take as
    // well.
    const QChar *behindStar = nullptr;
    const QChar *starText = nullptr;
    while (!text->isNull()) {
        if (*pattern == AnyRun) {
            behindStar = ++pattern;
            starText = text;
        } else if (*pattern == *text || *pattern == AnyCharacter) {
            ++pattern;
            ++text;
        } else if (behindStar) {
            pattern = behindStar;
            text = ++starText;
        } else {
            return false;
        }
    }
    while (*pattern == AnyRun)
        ++pattern;
    return pattern->isNull();
}

} // namespace Shared
