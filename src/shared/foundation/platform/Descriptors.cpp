#include <shared/foundation/platform/Descriptors.h>

#include <QtGlobal>

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/resource.h>

namespace Shared::Foundation::Platform {

bool HasFreeDescriptors(int count)
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return true;
    // The lowest number is given first, so the free ones lie at the upper end.
    const auto end = static_cast<int>(qMin<rlim_t>(limit.rlim_cur, std::numeric_limits<int>::max()));
    for (int number = end - 1; number >= 0 && count > 0; --number) {
        if (fcntl(number, F_GETFD) == -1 && errno == EBADF)
            --count;
    }
    return count <= 0;
}

} // namespace Shared::Foundation::Platform
