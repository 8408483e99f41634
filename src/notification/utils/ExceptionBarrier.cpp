#include "ExceptionBarrier.h"

#include <shared/logging/FrameworkLog.h>

namespace Tessellum::Notification::utils {

void LogCaughtException(const char *className) noexcept
{
    Shared::Logging::FrameworkLog().critical() << className << "::run() catched exception";
}

} // namespace Tessellum::Notification::utils
