#include <core/utils/StartFault.h>

namespace Tessellum::Core::utils {

bool IsStartFaultRequested()
{
    return false;
}

} // namespace Tessellum::Core::utils
