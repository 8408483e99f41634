#pragma once

#include <shared/TessellumExport.h>

class QObject;

namespace Shared::Synchronization {

/*! An empty base that keeps its place in the layout of the shared objects. It moves nothing anywhere: objects
 * that must live on a particular thread are moved there by whoever makes them. */
class TESSELLUM_EXPORT QApplicationMainThreadMover
{
public:
    explicit QApplicationMainThreadMover(QObject *) { }
    virtual ~QApplicationMainThreadMover() = default;
};

} // namespace Shared::Synchronization
