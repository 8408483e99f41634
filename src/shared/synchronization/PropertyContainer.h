#pragma once

#include <shared/TessellumExport.h>

namespace Shared {

/*! The empty base of the records that describe a T to be made. */
template <class T>
class TESSELLUM_EXPORT PropertyContainer
{
public:
    virtual ~PropertyContainer() = default;

protected:
    PropertyContainer() = default;
    PropertyContainer(const PropertyContainer &) = default;
    PropertyContainer &operator=(const PropertyContainer &) = default;
};

} // namespace Shared
