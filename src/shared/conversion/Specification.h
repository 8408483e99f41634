#pragma once

#include <shared/conversion/FormatSpecification.h>
#include <shared/conversion/UnitSpecification.h>

#include <QHash>
#include <QList>
#include <QMap>
#include <QVariant>

#include <functional>
#include <utility>

namespace Shared::Conversion::UnitConversion {

/*! The format of the values whose magnitude is below the number. */
using RangedFormatSpecification = std::pair<double, FormatSpecification>;

/*!
 * How the values of one quantity are shown to a person: unit, range, scaling, prefixes, and the number format
 * for each size of value.
 *
 * All functions are const and safe from any thread, as far as the custom formatter is.
 */
class TESSELLUM_EXPORT Specification
{
public:
    /*! Turns a scaled value into the template with its "%1" filled, in place of
     * FormatSpecification::formatDouble(). Called on the thread that asks for the text. */
    using CustomFormatter = std::function<QString(const FormatSpecification &, const double &,
                                                  const QLocale &, const QString &)>;
    /*! What stands behind a key is only looked at for "precision_increment". */
    using Options = QMap<QString, QVariant>;

    enum class ValueClipping : int { None = 0, Minimum = 1, Maximum = 2 };

    /*! One with the defaults: no unit, no limits, no prefixes. */
    explicit Specification(const QString &nameOfQuantity);
    virtual ~Specification() = default;
    Specification(const Specification &) = default;
    Specification(Specification &&) = default;
    Specification &operator=(const Specification &) = default;
    Specification &operator=(Specification &&) = default;

    /*!
     * Reads a document with the objects "unit" (see UnitSpecification), "visualization" (see
     * VisualizationSpecification), "format", and "format-kilo" and the like for the prefixes that need
     * formats of their own. The keys of a format are upper bounds, or "default"; its values are texts that
     * FormatSpecification reads. What is missing or wrong gets its default. \a customFormatter may be empty.
     */
    static Specification ParseSpecificationFromJson(const QString &identification,
                                                    const QJsonObject &document,
                                                    const CustomFormatter &customFormatter);

    QString getIdentification() const { return identification; }
    const UnitSpecification &getUnitSpecification() const { return unit; }
    const VisualizationSpecification &getVisualizationSpecification() const { return visualization; }
    /*! Whether this was not read from a document. */
    bool isDefault() const { return !isParsed; }

    /*! The format for a value of that magnitude, counted in \a prefix; valid for as long as this object. */
    const FormatSpecification &getFormatSpecificationFromValue(const double &value,
                                                               const SiPrefix &prefix) const;

    /*!
     * The text of a value that is counted in the input prefix. \a representation is "bestFit"; or
     * "fixedPrefix", where \a parameter is the SiPrefix or its short text, and otherwise the input prefix is
     * taken; anything else gives the bare number.
     */
    QString formatValueWithRepresentationAndOptions(const QLocale &locale, const double &value,
                                                    const QString &representation, const QVariant &parameter,
                                                    const Options &options) const;

    /*! Number, prefix and unit, with the enabled prefix that reads best. */
    QString bestFitConversion(const QLocale &locale, const double &value, const Options &options) const;
    /*! Number, prefix and unit, with this prefix. */
    QString fixedPrefixConversion(const QLocale &locale, const double &value, const SiPrefix &prefix,
                                  const Options &options) const;
    /*! The number alone, with six digits. */
    QString unformattedConversion(const QLocale &locale, const double &value) const;

    /*!
     * With the option "clipping", moves \a value to the limit beyond which it is, and tells which.
     * "allowZero" leaves zero alone, "allowNegativeValue" looks at the magnitude and keeps the sign.
     */
    ValueClipping clipToRange(double &value, const Options &options) const;

    /*! The text of \a value counted in \a prefix, behind "<" or ">" for a clipped one. The option
     * "precision_increment" is added to the precision of the format. */
    QString createResultString(const QLocale &locale, const double &value, const SiPrefix &prefix,
                               const ValueClipping &clipping, const Options &options) const;

private:
    QString identification;
    UnitSpecification unit;
    QHash<SiPrefix, QList<RangedFormatSpecification>> rangedFormats;
    QHash<SiPrefix, FormatSpecification> defaultFormats;
    VisualizationSpecification visualization;
    bool isParsed = false;
    CustomFormatter formatter;
};

} // namespace Shared::Conversion::UnitConversion
