#pragma once

#include <QString>

namespace Shared::Foundation::Platform {

/*! Whether the library in \a file has lost its end, as one does whose copy was broken off. The loader maps
 * such a file all the same, and the process ends by a signal. False for what is no library. */
bool IsCutLibrary(const QString &file);

} // namespace Shared::Foundation::Platform
