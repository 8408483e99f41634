#pragma once

#include <shared/TessellumExport.h>

#include <utility>

namespace Tessellum::Notification::utils {

/*! Logs at CRITICAL level that \a className::run() caught an exception. */
TESSELLUM_EXPORT void LogCaughtException(const char *className) noexcept;

/*! Calls \a body; whatever it throws ends here with a line that names \a className. */
template <class Body>
void RunGuarded(const char *className, Body &&body) noexcept
{
    try {
        std::forward<Body>(body)();
    } catch (...) {
        LogCaughtException(className);
    }
}

} // namespace Tessellum::Notification::utils
