#include <shared/logging/utils/StackTraceSource.h>

#include <atomic>

namespace Shared::Logging::utils {

namespace {

std::atomic<StackTraceFunction> stackTraceFunction{nullptr};

} // namespace

void SetStackTraceFunction(StackTraceFunction function)
{
    stackTraceFunction = function;
}

QStringList StackTrace()
{
    const StackTraceFunction function = stackTraceFunction;
    return function ? function() : QStringList();
}

} // namespace Shared::Logging::utils
