#include <shared/conversion/UnitParsing.h>
#include <shared/conversion/utils/SiPrefixTable.h>
#include <shared/localization/NumberParsing.h>
#include <shared/logging/FrameworkLog.h>

#include <algorithm>

namespace Shared::Conversion::UnitConversion {

namespace {

/*! The first row with whose short text \a text begins, with at least so many characters behind it; null if
 * there is none. "da" stands before "d". */
const utils::SiPrefixRow *findLeadingPrefix(const QString &text, int charactersBehind)
{
    const auto &table = utils::GetSiPrefixTable();
    const auto row = std::find_if(table.begin(), table.end(), [&](const utils::SiPrefixRow &candidate) {
        const QString &shortText = candidate.shortText;
        return !shortText.isEmpty() && text.size() >= shortText.size() + charactersBehind
            && text.startsWith(shortText);
    });
    return row != table.end() ? row : nullptr;
}

void split(const QString &text, const utils::SiPrefixRow *row, SiPrefix &prefix, QString &remainder)
{
    prefix = row ? row->prefix : SiPrefix::None;
    remainder = row ? text.mid(row->shortText.size()) : text;
}

QString withoutWhiteSpace(const QString &text)
{
    QString dense = text;
    const auto isSpace = [](QChar character) { return character.isSpace(); };
    dense.truncate(int(std::remove_if(dense.begin(), dense.end(), isSpace) - dense.begin()));
    return dense;
}

} // namespace

void ParseStringToSiPrefixAndRemainder(const QString &text, SiPrefix &prefix, QString &remainder)
{
    split(text, findLeadingPrefix(text, 0), prefix, remainder);
}

bool ParseStringToSiPrefixAndUnit(const QString &text, SiPrefix &prefix, QString &unit)
{
    split(text, findLeadingPrefix(text, 1), prefix, unit);
    return prefix == SiPrefix::None || !unit.isEmpty();
}

bool ParseStringToSiPrefixUnitAndValue(const QString &text, double &value, SiPrefix *prefix, QString *unit)
{
    const QString dense = withoutWhiteSpace(text);
    double number = 0.0;
    const int length = Localization::ParseLeadingNumber(dense, number);
    if (length == 0) {
        Logging::FrameworkLog().warning()
            << "UnitConversion::ConvertStringToSiPrefixUnitAndValue() the provided input: " << text
            << " does not contain a valid double value";
        return false;
    }
    const QString remainder = dense.mid(length);
    SiPrefix foundPrefix = SiPrefix::None;
    QString foundUnit;
    if (!ParseStringToSiPrefixAndUnit(remainder, foundPrefix, foundUnit)) {
        Logging::FrameworkLog().warning()
            << "UnitConversion::ConvertStringToSiPrefixUnitAndValue() the provided string: " << remainder
            << " does not contain a valid si prefix and unit";
        return false;
    }
    value = number;
    if (prefix)
        *prefix = foundPrefix;
    if (unit)
        *unit = foundUnit;
    return true;
}

bool ParseStringToValueAndRemainder(const QString &text, double &value, QString &remainder)
{
    double number = 0.0;
    int length = Localization::ParseLeadingNumber(text, number);
    const bool isFound = length > 0;
    while (isFound && length < text.size() && text.at(length).isSpace())
        ++length;
    remainder = text.mid(length);
    value = number;
    return isFound;
}

} // namespace Shared::Conversion::UnitConversion
