#include <shared/conversion/DoubleConversion.h>
#include <shared/logging/FrameworkLog.h>

#include <QMetaType>

#include <cmath>
#include <limits>

namespace Shared::Conversion {

namespace {

// A cast of a value that the target cannot hold is undefined, so the limits are settled before it. A limit
// that a double cannot hold (2^63 - 1, 2^64 - 1) rounds up, hence "at least" and not "above".
template <class T>
T Saturate(double value)
{
    using Limits = std::numeric_limits<T>;
    if (std::isnan(value))
        return Limits::has_quiet_NaN ? Limits::quiet_NaN() : T(0);
    if (value <= static_cast<double>(Limits::lowest()))
        return Limits::lowest();
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    return static_cast<T>(value);
}

/*! Makes a \a T of a value within the limits of \a Range. */
template <class T, class Range = T>
DoubleConversionFunctionWrapper MakeConversion()
{
    return DoubleConversionFunctionWrapper(
        [](const double &value) { return QVariant::fromValue(static_cast<T>(Saturate<Range>(value))); });
}

} // namespace

DoubleConversionFunctionWrapper::DoubleConversionFunctionWrapper()
    : function(&defaultConvert)
{ }

DoubleConversionFunctionWrapper::DoubleConversionFunctionWrapper(Function conversionFunction)
    : function(std::move(conversionFunction))
{ }

QVariant DoubleConversionFunctionWrapper::operator()(const double &value) const
{
    return function(value);
}

QVariant DoubleConversionFunctionWrapper::defaultConvert(const double &)
{
    Logging::FrameworkLog().warning() << "DoubleConversionFunctionWrapper::defaultConvert() called!";
    return QVariant();
}

DoubleConversionHelper::DoubleConversionHelper()
    : conversions{
        // Some platforms have a char without a sign.
        {QMetaType::Char, MakeConversion<char, signed char>()},
        {QMetaType::UChar, MakeConversion<unsigned char>()},
        {QMetaType::Short, MakeConversion<short>()},
        {QMetaType::UShort, MakeConversion<unsigned short>()},
        {QMetaType::Int, MakeConversion<int>()},
        {QMetaType::UInt, MakeConversion<unsigned int>()},
        {QMetaType::Long, MakeConversion<long, qint32>()},
        {QMetaType::ULong, MakeConversion<unsigned long, quint32>()},
        {QMetaType::LongLong, MakeConversion<long long>()},
        {QMetaType::ULongLong, MakeConversion<unsigned long long>()},
        {QMetaType::Float, MakeConversion<float>()},
        {QMetaType::Double, MakeConversion<double>()},
    }
{ }

QVariant DoubleConversionHelper::operator()(const int &type, const double &value) const
{
    return conversions.value(type)(value);
}

const DoubleConversionHelper &GetDoubleConversionHelper()
{
    // Never destroyed: threads that outlive the static destructors may still convert.
    static const DoubleConversionHelper *const helper = new DoubleConversionHelper;
    return *helper;
}

QVariant ConvertDouble(const int &type, const double &value)
{
    return GetDoubleConversionHelper()(type, value);
}

} // namespace Shared::Conversion
