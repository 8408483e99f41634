#pragma once

namespace Tessellum::Core::utils {

/*! Whether a start shall report a failure. Always false in the library; a test links a definition of its own.
 */
bool IsStartFaultRequested();

} // namespace Tessellum::Core::utils
