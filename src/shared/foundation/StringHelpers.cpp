#include <shared/foundation/StringHelpers.h>

namespace Shared {

namespace {

constexpr QChar anyRun = QLatin1Char('*');
constexpr QChar anyCharacter = QLatin1Char('?');

} // namespace

bool IsWildcardString(const QString &text)
{
    return text.contains(anyRun) || text.contains(anyCharacter);
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
        if (*pattern == anyRun) {
            behindStar = ++pattern;
            starText = text;
        } else if (*pattern == *text || *pattern == anyCharacter) {
            ++pattern;
            ++text;
        } else if (behindStar) {
            pattern = behindStar;
            text = ++starText;
        } else {
            return false;
        }
    }
    while (*pattern == anyRun)
        ++pattern;
    return pattern->isNull();
}

} // namespace Shared
