#include <shared/conversion/ScaleTransform.h>

#include <QtGlobal>

namespace Shared {

namespace {

bool isNearlyZero(double value)
{
    return qFuzzyCompare(1.0 + value, 1.0);
}

} // namespace

ScaleTransform::ScaleTransform(const double &initialScale, const double &initialOffset)
    : offset(initialOffset)
{
    setScale(initialScale);
}

double ScaleTransform::transform(double value) const
{
    return (value + offset) * scale;
}

double ScaleTransform::invTransform(double value) const
{
    return isNearlyZero(value) ? 0.0 : value / scale - offset;
}

ScaleTransform *ScaleTransform::copy() const
{
    return new ScaleTransform(*this);
}

void ScaleTransform::setScale(const double &value)
{
    scale = isNearlyZero(value) ? 1.0 : value;
}

void ScaleTransform::setOffset(const double &value)
{
    offset = value;
}

} // namespace Shared
