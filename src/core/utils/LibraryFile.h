#pragma once

#include <QString>

namespace Tessellum::Core::utils {

/*! The absolute path of the library's own file; empty, with a log line, where it cannot be found. */
QString LibraryFilePath();

} // namespace Tessellum::Core::utils
