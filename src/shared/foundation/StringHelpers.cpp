#include <shared/foundation/StringHelpers.h>

#include <QRandomGenerator>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <random>

namespace Shared {

namespace {

constexpr QChar anyRun = QLatin1Char('*');
constexpr QChar anyCharacter = QLatin1Char('?');

bool IsInvalidInFileName(QChar character)
{
    return QLatin1String("<>:\"/\\|?*").contains(character);
}

/*! Whether \a text is the name of a device, which no file can have on some systems. */
bool IsReservedName(const QString &text)
{
    for (const char *name : {"CON", "PRN", "AUX", "NUL"}) {
        if (text == QLatin1String(name))
            return true;
    }
    const bool isPort = text.startsWith(QLatin1String("COM")) || text.startsWith(QLatin1String("LPT"));
    return isPort && text.size() == 4 && text.at(3) >= QLatin1Char('1') && text.at(3) <= QLatin1Char('9');
}

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

QString GetRandomAlphaNumericString(const unsigned int &length)
{
    static constexpr char characters[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr int count = sizeof(characters) - 1;
    QString text;
    text.reserve(int(length));
    for (unsigned int position = 0; position < length; ++position)
        text += QLatin1Char(characters[std::rand() % count]);
    return text;
}

int CreateRandomValue(const int &first, const int &second)
{
    const auto [lowest, highest] = std::minmax(first, second);
    return std::uniform_int_distribution<int>(lowest, highest)(*QRandomGenerator::global());
}

QString RemoveWhiteSpaces(const QString &text)
{
    QString result;
    result.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(result), [](QChar c) { return !c.isSpace(); });
    return result;
}

QString ReplaceInvalidFilePathCharacters(const QString &text, const QChar &replacement)
{
    const QChar substitute = IsInvalidInFileName(replacement) ? QChar(QLatin1Char('_')) : replacement;
    QString name = text;
    std::replace_if(name.begin(), name.end(), IsInvalidInFileName, substitute);
    if (IsReservedName(name))
        name = substitute + name + substitute;
    while (name.endsWith(QLatin1Char(' ')) || name.endsWith(QLatin1Char('.')))
        name.chop(1);
    return name;
}

} // namespace Shared
