#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/Shareable.h>

namespace Shared::Synchronization::utils {

void ReportMissingSharedPointer(const std::bad_weak_ptr &reason)
{
    Logging::FrameworkLog().warning()
        << "Shareable::getSharedFromThis() smart pointer already deleted: " << reason.what();
}

} // namespace Shared::Synchronization::utils
