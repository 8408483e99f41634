#pragma once

#include <shared/TessellumExport.h>

namespace Shared {

/*!
 * A linear transform for plotting, with a scale and an offset. An object belongs to one thread at a time.
 */
class TESSELLUM_EXPORT ScaleTransform
{
public:
    /*! A scale that is next to zero becomes 1. */
    explicit ScaleTransform(const double &scale = 1.0, const double &offset = 0.0);
    virtual ~ScaleTransform() = default;
    ScaleTransform(const ScaleTransform &) = default;
    ScaleTransform &operator=(const ScaleTransform &) = default;

    /*! (value + offset) * scale */
    virtual double transform(double value) const;
    /*! value / scale - offset, but 0 for a value next to zero. */
    virtual double invTransform(double value) const;
    /*! A new object with the same scale and offset, owned by the caller. */
    virtual ScaleTransform *copy() const;

    /*! A scale that is next to zero becomes 1. */
    void setScale(const double &value);
    void setOffset(const double &value);

private:
    double scale = 1.0;
    double offset = 0.0;
};

} // namespace Shared
