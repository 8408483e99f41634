#pragma once

#include <shared/conversion/SiPrefix.h>

#include <QJsonObject>
#include <QStringList>

#include <limits>

namespace Shared::Conversion::UnitConversion {

/*! In what a quantity is counted, and which values it may have. A plain record. */
struct TESSELLUM_EXPORT UnitSpecification
{
    QString unitString; ///< such as "Hz"
    SiPrefix inputPrefix = SiPrefix::None; ///< what the raw values are counted in
    QVector<SiPrefix> enabledPrefixes{SiPrefix::None}; ///< those in which a value may be shown
    double minimumRange
        = std::numeric_limits<double>::lowest(); ///< counted in inputPrefix, as is the maximum
    double maximumRange = std::numeric_limits<double>::max();
    double scalingFactor = 1.0; ///< what a value is multiplied with to be shown

    /*! Whether there is a unit, and the maximum is not below the minimum. */
    bool isValid() const;

    /*!
     * Reads an object with the texts "baseUnit", "inputPrefix", "minimum", "maximum" and "scaling", numbers
     * in any notation, and the array "allowedSiPrefixes". What is missing or wrong gets its default: for the
     * minimum the smallest positive number, for the prefixes all of them. The input prefix is always among
     * them.
     */
    static UnitSpecification ParseUnitSpecificationFromJson(const QJsonObject &object);
};

/*! Which ways of showing and reading a value a user interface may offer. */
class TESSELLUM_EXPORT VisualizationSpecification
{
public:
    VisualizationSpecification() = default;
    VisualizationSpecification(const VisualizationSpecification &) = default;
    VisualizationSpecification(VisualizationSpecification &&) = default;
    VisualizationSpecification &operator=(const VisualizationSpecification &) = default;
    VisualizationSpecification &operator=(VisualizationSpecification &&) = default;
    virtual ~VisualizationSpecification() = default;

    /*! Reads an object with the arrays of texts "availableRepresentations", "availableOptions" and
     * "availableParsingOptions". */
    static VisualizationSpecification ParseVisualizationSpecificationFromJson(const QJsonObject &object);

    QStringList availableRepresentations() const { return representations; }
    QStringList availableOptions() const { return options; }
    QStringList availableParsingOptions() const { return parsingOptions; }

    bool hasRepresentation(const QString &name) const { return representations.contains(name); }
    bool hasOption(const QString &name) const { return options.contains(name); }
    bool hasParsingOption(const QString &name) const { return parsingOptions.contains(name); }

private:
    QStringList representations;
    QStringList options;
    QStringList parsingOptions;
};

} // namespace Shared::Conversion::UnitConversion
