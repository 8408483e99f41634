#pragma once

#include <shared/TessellumExport.h>

#include <QList>

namespace Tessellum::AppData {

/*! Registers the types of recorded data that travel in a QVariant, under their full names. The numbers of
 * those that are published, in their published order. Threads: any. */
TESSELLUM_EXPORT QList<int> RegisterDataMetatypes();

} // namespace Tessellum::AppData
