#pragma once

namespace Shared::Foundation::Platform {

/*! Whether this process can open \a count more files or sockets. Quick while there are many. */
bool HasFreeDescriptors(int count);

} // namespace Shared::Foundation::Platform
