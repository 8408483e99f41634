#pragma once

#include <shared/TessellumExport.h>

#include <QHashFunctions>
#include <QMetaType>
#include <QString>
#include <QVector>

namespace Shared::Conversion::UnitConversion {

/*! The SI prefixes from the largest to the smallest, in the order in which the best one is searched. */
enum class SiPrefix : int {
    Yotta = 0,
    Zetta = 1,
    Exa = 2,
    Peta = 3,
    Tera = 4,
    Giga = 5,
    Mega = 6,
    Kilo = 7,
    Hecto = 8,
    Deca = 9,
    None = 10,
    Deci = 11,
    Centi = 12,
    Milli = 13,
    Micro = 14,
    Nano = 15,
    Pico = 16,
    Femto = 17,
    Atto = 18,
    Zepto = 19,
    Yocto = 20
};

inline uint qHash(SiPrefix prefix, uint seed = 0)
{
    return ::qHash(static_cast<int>(prefix), seed);
}

// Both are made when the library is loaded, never change and are never destroyed: any thread, at any time.
/*! The prefixes in daily use: T, G, M, k, none, m, µ, n and p. */
TESSELLUM_EXPORT extern const QVector<SiPrefix> &cvDefaultPrefixes;
/*! All prefixes in their order. */
TESSELLUM_EXPORT extern const QVector<SiPrefix> &cvFullPrefixes;

// All functions below may be called from any thread.

/*! The short text, such as "k" for kilo and the micro sign U+00B5 for micro; empty for none and for an
 * unknown prefix. */
TESSELLUM_EXPORT QString ConvertSiPrefixToString(const SiPrefix &prefix);

/*! The long text, such as "kilo"; empty for none and for an unknown prefix. */
TESSELLUM_EXPORT QString ConvertSiPrefixToLongString(const SiPrefix &prefix);

/*! What \a value, counted in \a from, is when counted in \a to: 1500 in none is 1.5 in kilo. The factor of an
 * unknown prefix is 1. */
TESSELLUM_EXPORT double ConvertValueToTargetPrefix(const double &value, const SiPrefix &from,
                                                   const SiPrefix &to);

/*!
 * The prefix with this short text, in this case; the empty text is none. Otherwise \a defaultValue, and false
 * in \a ok if that is not null.
 */
TESSELLUM_EXPORT SiPrefix ParseStringToSiPrefix(const QString &text, const SiPrefix &defaultValue, bool *ok);

/*!
 * Chooses the prefix with which \a value, counted in \a inputPrefix, reads best: the largest enabled one that
 * keeps it at 1 or above, the next smaller one for a value below 1. What is next to zero (1e-12), infinite or
 * not a number keeps its prefix. An unknown \a inputPrefix counts as none. \a adjusted is the value counted
 * in \a prefix. Returns whether the search met an enabled prefix; also without one both are set.
 */
TESSELLUM_EXPORT bool AdjustSignificantDigits(double value, SiPrefix inputPrefix,
                                              const QVector<SiPrefix> &enabled, double &adjusted,
                                              SiPrefix &prefix);

} // namespace Shared::Conversion::UnitConversion

Q_DECLARE_METATYPE(Shared::Conversion::UnitConversion::SiPrefix)
