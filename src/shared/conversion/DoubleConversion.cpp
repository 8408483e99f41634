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
T Saturate(double value, T lowest, T highest)
{
    if (std::isnan(value))
        return std::numeric_limits<T>::has_quiet_NaN ? std::numeric_limits<T>::quiet_NaN() : T(0);
    if (value <= static_cast<double>(lowest))
        return lowest;
    if (value >= static_cast<double>(highest))
        return highest;
    return static_cast<T>(value);
}

template <class T>
DoubleConversionFunctionWrapper MakeConversion(T lowest = std::numeric_limits<T>::lowest(),
                                               T highest = std::numeric_limits<T>::max())
{
    return DoubleConversionFunctionWrapper([lowest, highest](const double &value) {
        return QVariant::fromValue<T>(Saturate<T>(value, lowest, highest));
    });
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
        {QMetaType::Char, MakeConversion<char>(-128, 127)},
        {QMetaType::UChar, MakeConversion<unsigned char>()},
        {QMetaType::Short, MakeConversion<short>()},
        {QMetaType::UShort, MakeConversion<unsigned short>()},
        {QMetaType::Int, MakeConversion<int>()},
        {QMetaType::UInt, MakeConversion<unsigned int>()},
        {QMetaType::Long,
         MakeConversion<long>(std::numeric_limits<qint32>::lowest(), std::numeric_limits<qint32>::max())},
        {QMetaType::ULong, MakeConversion<unsigned long>(0, std::numeric_limits<quint32>::max())},
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
