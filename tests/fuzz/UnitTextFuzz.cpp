// What a person types: the number taken is the longest that any notation reads, prefix and unit are what is
// left.
#include "FuzzInput.h"

#include <shared/conversion/UnitParsing.h>
#include <shared/localization/NumberParsing.h>
#include <shared/logging/LogHandler.h>

#include <cstring>
#include <support/LongestNumber.h>

using namespace Shared::Conversion::UnitConversion;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(bytes), int(size));
    double value = 0;
    const int length = Shared::Localization::ParseLeadingNumber(text, value);
    if (text.size() <= 500) {
        double expected = 0;
        Fuzz::Require(TestSupport::longestNumber(text, expected) == length);
        Fuzz::Require(std::memcmp(&expected, &value, sizeof value) == 0);
    }
    QString remainder;
    Fuzz::Require(ParseStringToValueAndRemainder(text, value, remainder) == (length > 0));
    Fuzz::Require(text.endsWith(remainder) && remainder.size() <= text.size() - length);

    SiPrefix prefix = SiPrefix::None;
    QString unit;
    ParseStringToSiPrefixAndRemainder(text, prefix, unit);
    Fuzz::Require(ConvertSiPrefixToString(prefix) + unit == text);
    Fuzz::Require(ParseStringToSiPrefixAndUnit(text, prefix, unit));
    Fuzz::Require(ConvertSiPrefixToString(prefix) + unit == text && unit.isEmpty() == text.isEmpty());
    if (ParseStringToSiPrefixUnitAndValue(text, value, &prefix, &unit)) {
        double adjusted = 0;
        SiPrefix best = SiPrefix::None;
        AdjustSignificantDigits(value, prefix, cvDefaultPrefixes, adjusted, best);
        Fuzz::Require(best == prefix || cvDefaultPrefixes.contains(best));
    }
    return 0;
}
