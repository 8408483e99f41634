#include <shared/localization/utils/NumberScan.h>

#include <algorithm>
#include <limits>

namespace Shared::Localization::utils {

namespace {

constexpr int groupSize = 3;
constexpr int wordLength = 3;

} // namespace

NumberScan::NumberScan(const QLocale &numberLocale, QStringView numberText)
    : locale(numberLocale)
    , text(numberText)
    , zero(locale.zeroDigit())
    , group(locale.groupSeparator())
{ }

int NumberScan::longest()
{
    while (at(next).isSpace())
        ++next;
    const bool isSigned = isSign(next);
    if (isWord(isSigned ? "inf" : "nan") || isWord("inf"))
        return next + (isSigned ? 1 : 0) + wordLength;
    if (isSigned)
        ++next;
    scanInteger();
    if (!isGroupComplete())
        return best;
    if (at(next) == locale.decimalPoint())
        scanFraction();
    if (digits > 0 && isExponent(next))
        scanExponent();
    return best;
}

int NumberScan::digit(int index) const
{
    const ushort character = at(index).unicode();
    if (character >= '0' && character <= '9')
        return character - '0';
    const int value = character - zero.unicode();
    return value >= 0 && value <= 9 ? value : -1;
}

bool NumberScan::isMinus(int index) const
{
    // The minus sign of typography is one under every locale.
    const QChar character = at(index);
    return character == QLatin1Char('-') || character == QChar(0x2212) || character == locale.negativeSign();
}

bool NumberScan::isSign(int index) const
{
    return isMinus(index) || at(index) == QLatin1Char('+') || at(index) == locale.positiveSign();
}

bool NumberScan::isGroupSeparator(int index) const
{
    const QChar character = at(index);
    // A blank stands for the two that do not break a line.
    const bool isBlank = group == QChar(0xa0) || group == QChar(0x202f);
    return character == group || (isBlank && character == QLatin1Char(' '));
}

bool NumberScan::isExponent(int index) const
{
    const QChar character = at(index).toLower();
    return character == QLatin1Char('e') || character == locale.exponential().toLower();
}

bool NumberScan::isWord(const char *word) const
{
    const int start = isSign(next) ? next + 1 : next;
    return text.mid(std::min<qsizetype>(start, text.size()), wordLength)
               .compare(QLatin1String(word), Qt::CaseInsensitive)
        == 0;
}

bool NumberScan::isGroupComplete() const
{
    return lastSeparator < 0 || next == lastSeparator + 1 + groupSize;
}

bool NumberScan::takesGroupSeparator()
{
    if (!isGroupSeparator(next))
        return false;
    if (lastSeparator < 0)
        return digits > 0 && digits <= groupSize;
    // Indian locales write 12,34,567. QLocale does not tell, but reads it.
    if (middleGroupSize == 0) {
        bool isIndian = false;
        locale.toDouble(QStringLiteral("1_11_111").replace(QLatin1Char('_'), group), &isIndian);
        middleGroupSize = isIndian ? 2 : groupSize;
    }
    return next == lastSeparator + 1 + middleGroupSize;
}

void NumberScan::scanInteger()
{
    while (true) {
        const int value = digit(next);
        if (value >= 0) {
            topDecade += isZero ? 0 : 1;
            isZero = isZero && value == 0;
            ++digits;
            ++next;
            if (isGroupComplete())
                takeIfHeld(topDecade);
        } else if (takesGroupSeparator()) {
            lastSeparator = next++;
        } else {
            return;
        }
    }
}

void NumberScan::scanFraction()
{
    ++next;
    const int integerDigits = digits;
    bool endsInDigits = integerDigits > 0;
    for (int value = digit(next); value >= 0; value = digit(next)) {
        // A fraction may be too small to be held, the zeros at its beginning then are all that can be read.
        if (isZero && value != 0) {
            if (endsInDigits)
                best = next;
            isZero = false;
            topDecade = integerDigits - digits - 1;
        }
        ++digits;
        ++next;
        endsInDigits = true;
    }
    // More digits only make the number larger, and none behind the point decides whether it is too large.
    if (endsInDigits)
        takeIfHeld(topDecade);
}

void NumberScan::scanExponent()
{
    ++next;
    const bool isNegative = isMinus(next);
    if (isSign(next))
        ++next;
    // Beyond every text's number of digits, so that a larger exponent changes nothing.
    constexpr qint64 ceiling = qint64(1) << 40;
    qint64 exponent = 0;
    for (int value = digit(next); value >= 0; value = digit(next)) {
        exponent = std::min(exponent * 10 + value, ceiling);
        ++next;
        takeIfHeld(topDecade + (isNegative ? -exponent : exponent));
    }
}

void NumberScan::takeIfHeld(qint64 decade)
{
    constexpr int largest = std::numeric_limits<double>::max_exponent10;
    // Half of the smallest number is rounded up to it.
    constexpr int smallest = -324;
    if (isZero || (decade > smallest && decade < largest)) {
        best = next;
    } else if (decade == smallest || decade == largest) {
        // One try for each: the digits are the same, up to those behind the point, which do not matter here.
        if (triedDecade != decade) {
            triedDecade = decade;
            locale.toDouble(text.left(next), &isTriedHeld);
        }
        if (isTriedHeld)
            best = next;
    }
}

} // namespace Shared::Localization::utils
