#pragma once

#include <shared/conversion/SiPrefix.h>

#include <array>

namespace Shared::Conversion::UnitConversion::utils {

/*! What is known of one prefix. */
struct SiPrefixRow
{
    SiPrefix prefix;
    QString shortText;
    QString longText;
    int exponent;
    double factor;
};

using SiPrefixTable = std::array<SiPrefixRow, 21>;

/*! The rows by the number of their prefix. Made once, only read afterwards, never destroyed. */
const SiPrefixTable &GetSiPrefixTable();

/*! The row of a prefix, null for an unknown one. */
const SiPrefixRow *FindSiPrefix(SiPrefix prefix);

/*! Values up to here count as zero. */
inline constexpr double NearlyZero = 1e-12;

} // namespace Shared::Conversion::UnitConversion::utils
