#include <shared/conversion/Specification.h>
#include <shared/conversion/utils/SiPrefixTable.h>
#include <shared/localization/NumberParsing.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace Shared::Conversion::UnitConversion {

namespace {

/*! The formats for one prefix. */
struct Formats
{
    QList<RangedFormatSpecification> ranged;
    FormatSpecification fallback = FormatSpecification::GetDefault();
};

Formats parseFormats(const QJsonObject &object)
{
    Formats formats;
    // Sorted before they become formats, whose copies are costly.
    std::multimap<double, QJsonValue> values;
    for (auto item = object.begin(); item != object.end(); ++item) {
        double upperBound = 0.0;
        if (item.key() == QLatin1String("default"))
            formats.fallback = FormatSpecification::ParseFormatSpecificationFromJson(item.value());
        else if (Localization::ParseNumber(item.key(), upperBound) && !std::isnan(upperBound))
            values.emplace(upperBound, item.value());
    }
    for (const auto &[upperBound, value] : values)
        formats.ranged.append({upperBound, FormatSpecification::ParseFormatSpecificationFromJson(value)});
    return formats;
}

QString formatsKey(SiPrefix prefix)
{
    return QStringLiteral("format-%1").arg(ConvertSiPrefixToLongString(prefix));
}

int saturatedSum(int left, int right)
{
    using Limits = std::numeric_limits<int>;
    return int(std::clamp<qint64>(qint64(left) + right, Limits::min(), Limits::max()));
}

/*! Fills the last "%2" and "%3", which are those of the template: padding may have left others in the
 * number. */
QString withPrefixAndUnit(const QString &text, const QString &prefix, const QString &unit)
{
    const QString unitMark = QStringLiteral("%3");
    const QString prefixMark = QStringLiteral("%2");
    QString filled = text;
    const int unitIndex = filled.lastIndexOf(unitMark);
    const int prefixIndex = filled.lastIndexOf(prefixMark);
    // The later one first, so that the index of the other one stays true.
    if (unitIndex > prefixIndex)
        filled.replace(unitIndex, unitMark.size(), unit);
    if (prefixIndex >= 0)
        filled.replace(prefixIndex, prefixMark.size(), prefix);
    if (unitIndex >= 0 && unitIndex < prefixIndex)
        filled.replace(unitIndex, unitMark.size(), unit);
    return filled;
}

} // namespace

Specification::Specification(const QString &nameOfQuantity)
    : identification(nameOfQuantity)
{ }

Specification Specification::ParseSpecificationFromJson(const QString &identification,
                                                        const QJsonObject &document,
                                                        const CustomFormatter &customFormatter)
{
    Specification parsed(identification);
    parsed.isParsed = true;
    parsed.formatter = customFormatter;
    parsed.unit
        = UnitSpecification::ParseUnitSpecificationFromJson(document.value(QLatin1String("unit")).toObject());
    parsed.visualization = VisualizationSpecification::ParseVisualizationSpecificationFromJson(
        document.value(QLatin1String("visualization")).toObject());

    const Formats common = parseFormats(document.value(QLatin1String("format")).toObject());
    QVector<SiPrefix> prefixes = parsed.unit.enabledPrefixes;
    if (!prefixes.contains(SiPrefix::None))
        prefixes.append(SiPrefix::None);
    for (const SiPrefix prefix : qAsConst(prefixes)) {
        if (parsed.rangedFormats.contains(prefix))
            continue;
        const QString key = formatsKey(prefix);
        const bool hasOwn = prefix != SiPrefix::None && document.contains(key);
        const Formats formats = hasOwn ? parseFormats(document.value(key).toObject()) : common;
        parsed.rangedFormats.insert(prefix, formats.ranged);
        parsed.defaultFormats.insert(prefix, formats.fallback);
    }
    return parsed;
}

const FormatSpecification &Specification::getFormatSpecificationFromValue(const double &value,
                                                                          const SiPrefix &prefix) const
{
    auto ranged = rangedFormats.constFind(prefix);
    if (ranged == rangedFormats.constEnd())
        ranged = rangedFormats.constFind(SiPrefix::None);
    if (ranged != rangedFormats.constEnd()) {
        const double magnitude = std::fabs(value);
        const auto format = std::find_if(
            ranged->begin(), ranged->end(),
            [magnitude](const RangedFormatSpecification &item) { return item.first > magnitude; });
        if (format != ranged->end())
            return format->second;
    }
    auto fallback = defaultFormats.constFind(prefix);
    if (fallback == defaultFormats.constEnd())
        fallback = defaultFormats.constFind(SiPrefix::None);
    return fallback != defaultFormats.constEnd() ? *fallback : FormatSpecification::GetDefault();
}

QString Specification::formatValueWithRepresentationAndOptions(const QLocale &locale, const double &value,
                                                               const QString &representation,
                                                               const QVariant &parameter,
                                                               const Options &options) const
{
    if (representation == QLatin1String("bestFit"))
        return bestFitConversion(locale, value, options);
    if (representation != QLatin1String("fixedPrefix"))
        return unformattedConversion(locale, value);
    SiPrefix prefix = unit.inputPrefix;
    if (parameter.userType() == qMetaTypeId<SiPrefix>())
        prefix = parameter.value<SiPrefix>();
    else if (parameter.canConvert<QString>())
        prefix = ParseStringToSiPrefix(parameter.toString(), prefix, nullptr);
    return fixedPrefixConversion(locale, value, prefix, options);
}

QString Specification::bestFitConversion(const QLocale &locale, const double &value,
                                         const Options &options) const
{
    double clipped = value;
    const ValueClipping clipping = clipToRange(clipped, options);
    double adjusted = clipped;
    SiPrefix prefix = unit.inputPrefix;
    AdjustSignificantDigits(clipped, unit.inputPrefix, unit.enabledPrefixes, adjusted, prefix);
    return createResultString(locale, adjusted, prefix, clipping, options);
}

QString Specification::fixedPrefixConversion(const QLocale &locale, const double &value,
                                             const SiPrefix &prefix, const Options &options) const
{
    double clipped = value;
    const ValueClipping clipping = clipToRange(clipped, options);
    const double converted = ConvertValueToTargetPrefix(clipped, unit.inputPrefix, prefix);
    return createResultString(locale, converted, prefix, clipping, options);
}

QString Specification::unformattedConversion(const QLocale &locale, const double &value) const
{
    return locale.toString(value, 'g', 6);
}

Specification::ValueClipping Specification::clipToRange(double &value, const Options &options) const
{
    if (!options.contains(QStringLiteral("clipping")))
        return ValueClipping::None;
    if (options.contains(QStringLiteral("allowZero")) && std::fabs(value) <= utils::NearlyZero)
        return ValueClipping::None;
    const double original = value;
    const bool isSignAllowed = options.contains(QStringLiteral("allowNegativeValue"));
    ValueClipping clipping = ValueClipping::None;
    if (isSignAllowed)
        value = std::fabs(value);
    if (value < unit.minimumRange) {
        value = unit.minimumRange;
        clipping = ValueClipping::Minimum;
    } else if (value > unit.maximumRange) {
        value = unit.maximumRange;
        clipping = ValueClipping::Maximum;
    }
    if (isSignAllowed)
        value = original < 0.0 ? -std::fabs(value) : std::fabs(value);
    return clipping;
}

QString Specification::createResultString(const QLocale &locale, const double &value, const SiPrefix &prefix,
                                          const ValueClipping &clipping, const Options &options) const
{
    QString textTemplate = QStringLiteral("%1 %2%3");
    if (clipping == ValueClipping::Minimum)
        textTemplate.prepend(QLatin1String("< "));
    else if (clipping == ValueClipping::Maximum)
        textTemplate.prepend(QLatin1String("> "));
    const double scaled = unit.scalingFactor * value;
    const auto render = [&](const FormatSpecification &format) {
        return formatter ? formatter(format, scaled, locale, textTemplate)
                         : format.formatDouble(scaled, locale, textTemplate);
    };
    const FormatSpecification &format = getFormatSpecificationFromValue(scaled, prefix);
    QString text;
    const auto increment = options.constFind(QStringLiteral("precision_increment"));
    if (increment == options.constEnd()) {
        text = render(format);
    } else {
        FormatSpecification incremented(format);
        incremented.precision() = saturatedSum(incremented.precision(), increment->toInt());
        text = render(incremented);
    }
    return withPrefixAndUnit(text, ConvertSiPrefixToString(prefix), unit.unitString).trimmed();
}

} // namespace Shared::Conversion::UnitConversion
