#include <shared/foundation/platform/UserIdentity.h>

#include <unistd.h>

namespace Shared::Foundation::Platform {

QString UserKeySuffix()
{
    return QLatin1Char('#') + QString::number(geteuid());
}

} // namespace Shared::Foundation::Platform
