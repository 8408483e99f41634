#include <shared/conversion/SiPrefix.h>
#include <shared/conversion/utils/SiPrefixTable.h>

#include <algorithm>
#include <cmath>

namespace Shared::Conversion::UnitConversion {

using utils::GetSiPrefixTable;
using utils::SiPrefixRow;

namespace utils {

const SiPrefixTable &GetSiPrefixTable()
{
    static const auto *const table = new SiPrefixTable{{
        {SiPrefix::Yotta, QStringLiteral("Y"), QStringLiteral("yotta"), 24, 1e24},
        {SiPrefix::Zetta, QStringLiteral("Z"), QStringLiteral("zetta"), 21, 1e21},
        {SiPrefix::Exa, QStringLiteral("E"), QStringLiteral("exa"), 18, 1e18},
        {SiPrefix::Peta, QStringLiteral("P"), QStringLiteral("peta"), 15, 1e15},
        {SiPrefix::Tera, QStringLiteral("T"), QStringLiteral("tera"), 12, 1e12},
        {SiPrefix::Giga, QStringLiteral("G"), QStringLiteral("giga"), 9, 1e9},
        {SiPrefix::Mega, QStringLiteral("M"), QStringLiteral("mega"), 6, 1e6},
        {SiPrefix::Kilo, QStringLiteral("k"), QStringLiteral("kilo"), 3, 1e3},
        {SiPrefix::Hecto, QStringLiteral("h"), QStringLiteral("hecto"), 2, 1e2},
        {SiPrefix::Deca, QStringLiteral("da"), QStringLiteral("deca"), 1, 1e1},
        {SiPrefix::None, QString(), QString(), 0, 1.0},
        {SiPrefix::Deci, QStringLiteral("d"), QStringLiteral("deci"), -1, 1e-1},
        {SiPrefix::Centi, QStringLiteral("c"), QStringLiteral("centi"), -2, 1e-2},
        {SiPrefix::Milli, QStringLiteral("m"), QStringLiteral("milli"), -3, 1e-3},
        {SiPrefix::Micro, QStringLiteral("\u00b5"), QStringLiteral("micro"), -6, 1e-6},
        {SiPrefix::Nano, QStringLiteral("n"), QStringLiteral("nano"), -9, 1e-9},
        {SiPrefix::Pico, QStringLiteral("p"), QStringLiteral("pico"), -12, 1e-12},
        {SiPrefix::Femto, QStringLiteral("f"), QStringLiteral("femto"), -15, 1e-15},
        {SiPrefix::Atto, QStringLiteral("a"), QStringLiteral("atto"), -18, 1e-18},
        {SiPrefix::Zepto, QStringLiteral("z"), QStringLiteral("zepto"), -21, 1e-21},
        {SiPrefix::Yocto, QStringLiteral("y"), QStringLiteral("yocto"), -24, 1e-24},
    }};
    return *table;
}

const SiPrefixRow *FindSiPrefix(SiPrefix prefix)
{
    const int number = static_cast<int>(prefix);
    const auto &table = GetSiPrefixTable();
    return number >= 0 && number < int(table.size()) ? &table[std::size_t(number)] : nullptr;
}

} // namespace utils

namespace {

const QVector<SiPrefix> &FullPrefixes()
{
    static const auto *const prefixes = [] {
        auto *const all = new QVector<SiPrefix>;
        for (const SiPrefixRow &row : GetSiPrefixTable())
            all->append(row.prefix);
        return all;
    }();
    return *prefixes;
}

double factorOf(SiPrefix prefix)
{
    const SiPrefixRow *const row = utils::FindSiPrefix(prefix);
    return row ? row->factor : 1.0;
}

/*! One search for the best prefix: the row where it stands, the exponent that the value has there, and the
 * best row so far. */
struct PrefixSearch
{
    const QVector<SiPrefix> &enabled;
    const SiPrefixRow *row;
    qint64 exponent;
    const SiPrefixRow *best;
    bool found = false;

    void step(const SiPrefixRow *next)
    {
        exponent += row->exponent - next->exponent;
        row = next;
    }
    void take()
    {
        best = row;
        found = true;
    }
    void searchLarger()
    {
        const SiPrefixRow *const first = &GetSiPrefixTable().front();
        while (exponent > 0 && row != first) {
            step(row - 1);
            if (exponent >= 0 && enabled.contains(row->prefix))
                take();
        }
    }
    void searchSmaller()
    {
        const SiPrefixRow *const last = &GetSiPrefixTable().back();
        while (exponent < 0 && row != last) {
            step(row + 1);
            const int gap = row == last ? 0 : row->exponent - (row + 1)->exponent;
            if (exponent <= gap && enabled.contains(row->prefix))
                take();
        }
    }
};

const int siPrefixMetaType = qRegisterMetaType<SiPrefix>("Shared::Conversion::UnitConversion::SiPrefix");

} // namespace

const QVector<SiPrefix> &cvFullPrefixes = FullPrefixes();
const QVector<SiPrefix> &cvDefaultPrefixes
    = *new QVector<SiPrefix>{SiPrefix::Tera,  SiPrefix::Giga,  SiPrefix::Mega, SiPrefix::Kilo, SiPrefix::None,
                             SiPrefix::Milli, SiPrefix::Micro, SiPrefix::Nano, SiPrefix::Pico};

QString ConvertSiPrefixToString(const SiPrefix &prefix)
{
    const SiPrefixRow *const row = utils::FindSiPrefix(prefix);
    return row ? row->shortText : QString();
}

QString ConvertSiPrefixToLongString(const SiPrefix &prefix)
{
    const SiPrefixRow *const row = utils::FindSiPrefix(prefix);
    return row ? row->longText : QString();
}

double ConvertValueToTargetPrefix(const double &value, const SiPrefix &from, const SiPrefix &to)
{
    return factorOf(from) / factorOf(to) * value;
}

SiPrefix ParseStringToSiPrefix(const QString &text, const SiPrefix &defaultValue, bool *ok)
{
    const auto &table = GetSiPrefixTable();
    const auto row = std::find_if(table.begin(), table.end(), [&text](const SiPrefixRow &candidate) {
        return candidate.shortText == text;
    });
    if (ok)
        *ok = row != table.end();
    return row != table.end() ? row->prefix : defaultValue;
}

bool AdjustSignificantDigits(double value, SiPrefix inputPrefix, const QVector<SiPrefix> &enabled,
                             double &adjusted, SiPrefix &prefix)
{
    prefix = inputPrefix;
    adjusted = value;
    const double magnitude = std::fabs(value);
    // The exponent of what is not finite is no integer.
    if (magnitude <= utils::NearlyZero || !std::isfinite(value))
        return true;
    const SiPrefixRow *const known = utils::FindSiPrefix(inputPrefix);
    const SiPrefixRow *const start = known ? known : utils::FindSiPrefix(SiPrefix::None);
    PrefixSearch search{enabled, start, static_cast<qint64>(std::floor(std::log10(magnitude))), start};
    if (search.exponent >= 0)
        search.searchLarger();
    else
        search.searchSmaller();
    if (search.best != start) {
        prefix = search.best->prefix;
        adjusted = start->factor / search.best->factor * value;
    }
    return search.found;
}

} // namespace Shared::Conversion::UnitConversion
