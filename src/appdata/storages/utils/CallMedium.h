#pragma once

#include <shared/logging/FrameworkLog.h>

#include <exception>
#include <utility>

namespace Tessellum::AppData::Storages::utils {

/*!
 * Runs \a operation, a call of a medium's implementation, which is foreign code. What it throws ends here
 * with a CRITICAL line that begins with \a caller, "Class::function()"; the result is then \a failed.
 */
template <class Result, class Operation>
Result CallMedium(const char *caller, Result failed, Operation &&operation) noexcept
{
    try {
        return std::forward<Operation>(operation)();
    } catch (const std::exception &exception) {
        Shared::Logging::FrameworkLog().critical()
            << caller << " catched exception of the storage implementation: " << exception.what();
    } catch (...) {
        Shared::Logging::FrameworkLog().critical()
            << caller << " catched exception of the storage implementation";
    }
    return failed;
}

} // namespace Tessellum::AppData::Storages::utils
