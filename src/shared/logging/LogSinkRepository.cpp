#include <shared/logging/LogSinkRepository.h>
#include <shared/logging/utils/CallbackTable.h>

namespace Shared::Logging {

QString LogSinkRepository::addCustomSink(const LogSink &callback)
{
    return utils::AddCallback(callbacks, callback);
}

bool LogSinkRepository::removeCustomSink(const QString &handle)
{
    return callbacks.remove(handle) == 1;
}

} // namespace Shared::Logging
