#include <shared/logging/LogFilterRepository.h>
#include <shared/logging/utils/CallbackTable.h>

namespace Shared::Logging {

QString LogFilterRepository::addCustomFilter(const LogFilter &callback)
{
    return utils::AddCallback(callbacks, callback);
}

bool LogFilterRepository::removeCustomFilter(const QString &handle)
{
    return callbacks.remove(handle) == 1;
}

} // namespace Shared::Logging
