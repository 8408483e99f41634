#pragma once

#include <shared/conversion/SiPrefix.h>

namespace Shared::Conversion::UnitConversion {

// Reading what a person types: a number in any notation known here, an SI prefix, a unit. All functions may
// be called from any thread. None knows units: whatever begins with the text of a prefix is split, "Pa" is
// peta and the unit "a".

/*! Takes the prefix off with which \a text begins, none where it begins with no prefix; \a remainder gets
 * what is behind it. */
TESSELLUM_EXPORT void ParseStringToSiPrefixAndRemainder(const QString &text, SiPrefix &prefix,
                                                        QString &remainder);

/*! The same for a prefix with a unit behind it: the whole text is the unit where it is no longer than the
 * prefix. False where a prefix was taken and no unit is left. */
TESSELLUM_EXPORT bool ParseStringToSiPrefixAndUnit(const QString &text, SiPrefix &prefix, QString &unit);

/*!
 * Reads a text such as "1,5 kHz". White space does not count; the longest beginning that is a number under
 * one of the distinct locales is the value, what follows it are prefix and unit, both of which may be
 * missing. False and a log line if there is no number. \a prefix and \a unit may be null.
 */
TESSELLUM_EXPORT bool ParseStringToSiPrefixUnitAndValue(const QString &text, double &value, SiPrefix *prefix,
                                                        QString *unit);

/*! Reads the longest beginning of \a text that is a number under one of the distinct locales, blanks around
 * it included; \a remainder gets what is behind it. False, with the value 0 and all of the text as the
 * remainder, if there is none. */
TESSELLUM_EXPORT bool ParseStringToValueAndRemainder(const QString &text, double &value, QString &remainder);

} // namespace Shared::Conversion::UnitConversion
