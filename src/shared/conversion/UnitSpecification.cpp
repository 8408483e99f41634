#include <shared/conversion/UnitSpecification.h>
#include <shared/localization/NumberParsing.h>

#include <QJsonArray>

namespace Shared::Conversion::UnitConversion {

namespace {

double numberAt(const QJsonObject &object, const QString &key, double fallback)
{
    double number = fallback;
    Localization::ParseNumber(object.value(key).toString(), number);
    return number;
}

QStringList textsAt(const QJsonObject &object, const QString &key)
{
    QStringList texts;
    const QJsonArray array = object.value(key).toArray();
    for (const QJsonValue &value : array) {
        // The text of anything else would be the empty one, which names a prefix.
        if (value.isString())
            texts.append(value.toString());
    }
    return texts;
}

QVector<SiPrefix> prefixesAt(const QJsonObject &object, const QString &key)
{
    QVector<SiPrefix> prefixes;
    const QStringList texts = textsAt(object, key);
    for (const QString &text : texts) {
        bool isKnown = false;
        const SiPrefix prefix = ParseStringToSiPrefix(text, SiPrefix::None, &isKnown);
        if (isKnown)
            prefixes.append(prefix);
    }
    return prefixes.isEmpty() ? cvFullPrefixes : prefixes;
}

} // namespace

bool UnitSpecification::isValid() const
{
    return !(maximumRange < minimumRange) && !unitString.isEmpty();
}

UnitSpecification UnitSpecification::ParseUnitSpecificationFromJson(const QJsonObject &object)
{
    using Limits = std::numeric_limits<double>;
    UnitSpecification unit;
    unit.unitString = object.value(QLatin1String("baseUnit")).toString();
    unit.inputPrefix = ParseStringToSiPrefix(object.value(QLatin1String("inputPrefix")).toString(),
                                             SiPrefix::None, nullptr);
    unit.enabledPrefixes = prefixesAt(object, QStringLiteral("allowedSiPrefixes"));
    if (!unit.enabledPrefixes.contains(unit.inputPrefix))
        unit.enabledPrefixes.append(unit.inputPrefix);
    unit.minimumRange = numberAt(object, QStringLiteral("minimum"), Limits::min());
    unit.maximumRange = numberAt(object, QStringLiteral("maximum"), Limits::max());
    unit.scalingFactor = numberAt(object, QStringLiteral("scaling"), 1.0);
    return unit;
}

VisualizationSpecification
VisualizationSpecification::ParseVisualizationSpecificationFromJson(const QJsonObject &object)
{
    VisualizationSpecification visualization;
    visualization.representations = textsAt(object, QStringLiteral("availableRepresentations"));
    visualization.options = textsAt(object, QStringLiteral("availableOptions"));
    visualization.parsingOptions = textsAt(object, QStringLiteral("availableParsingOptions"));
    return visualization;
}

} // namespace Shared::Conversion::UnitConversion
