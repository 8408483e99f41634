#pragma once

#include <shared/TessellumExport.h>

namespace Shared {

/*! Whether the system runs a process of this number; one that has ended and was not yet waited for does not
 * run. */
TESSELLUM_EXPORT bool CheckIfProcessIdIsRunning(const int &processId);

/*! Ends a process at once, without a chance to clean up. False if there is none, or it is not ours to end. */
TESSELLUM_EXPORT bool TerminateProcessById(const int &processId);

} // namespace Shared
