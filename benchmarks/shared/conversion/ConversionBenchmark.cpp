// Numbers, prefixes and units, beside what Qt takes for the number alone.

#include <shared/conversion/Specification.h>
#include <shared/conversion/UnitParsing.h>
#include <shared/localization/DistinctLocalesCache.h>
#include <shared/localization/NumericStrings.h>
#include <shared/logging/LogHandler.h>

#include <QJsonDocument>

#include <benchmark/benchmark.h>

using namespace Shared::Conversion::UnitConversion;

namespace {

const QLocale german(QLocale::German, QLocale::Germany);
const QString number = QStringLiteral("12345,6789");
constexpr double shownValue = 1234567.8;

void ReadNumber(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(
            Shared::Localization::LocalizeNumericString(german, number, QMetaType::Double, QVariant()));
    state.counters["aim"] = 3;
}
BENCHMARK(ReadNumber)->UseRealTime();

void ReadWithQLocale(benchmark::State &state)
{
    bool ok = false;
    for (auto _ : state)
        benchmark::DoNotOptimize(german.toDouble(number, &ok));
}
void ReadNumber_Floor(benchmark::State &state)
{
    ReadWithQLocale(state);
}
BENCHMARK(ReadNumber_Floor)->UseRealTime();

void ReadNumberPrefixUnit(benchmark::State &state)
{
    const QString text = QStringLiteral("12345,6 kHz");
    for (auto _ : state) {
        double value = 0;
        SiPrefix prefix = SiPrefix::None;
        QString unit;
        benchmark::DoNotOptimize(ParseStringToSiPrefixUnitAndValue(text, value, &prefix, &unit));
    }
    state.counters["aim"] = 40;
}
BENCHMARK(ReadNumberPrefixUnit)->UseRealTime();

void ReadNumberPrefixUnit_Floor(benchmark::State &state)
{
    ReadWithQLocale(state);
}
BENCHMARK(ReadNumberPrefixUnit_Floor)->UseRealTime();

// The time of one character may not grow with the length.
void ReadBeforeUselessText(benchmark::State &state, const QString &text, QChar useless)
{
    const QString whole = text + QString(int(state.range(0)), useless);
    for (auto _ : state) {
        double value = 0;
        benchmark::DoNotOptimize(ParseStringToSiPrefixUnitAndValue(whole, value, nullptr, nullptr));
    }
    state.counters["items"] = double(state.range(0));
}
BENCHMARK_CAPTURE(ReadBeforeUselessText, letters, QStringLiteral("12345,6"), 'x')
    ->Arg(1000)
    ->Arg(1000000)
    ->UseRealTime();
BENCHMARK_CAPTURE(ReadBeforeUselessText, digits, QStringLiteral("9"), '9')
    ->Arg(1000)
    ->Arg(1000000)
    ->UseRealTime();

void ShowBestFit(benchmark::State &state)
{
    const auto document = QJsonDocument::fromJson(
        R"({"unit": {"baseUnit": "Hz"}, "format": {"default": "0;f;3", "1": "0;f;1"}})");
    const auto frequency
        = Specification::ParseSpecificationFromJson(QStringLiteral("f"), document.object(), {});
    for (auto _ : state)
        benchmark::DoNotOptimize(frequency.bestFitConversion(german, shownValue, {}));
    state.counters["aim"] = 5;
}
BENCHMARK(ShowBestFit)->UseRealTime();

void ShowBestFit_Floor(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(german.toString(shownValue, 'f', 3));
}
BENCHMARK(ShowBestFit_Floor)->UseRealTime();

void FirstDistinctLocales(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(Shared::Localization::DistinctLocalesCache().distinctLocales());
    state.counters["aim_ns"] = 50e6;
}
BENCHMARK(FirstDistinctLocales)->UseRealTime();

} // namespace
