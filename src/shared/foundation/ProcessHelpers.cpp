#include <shared/foundation/platform/Processes.h>
#include <shared/foundation/ProcessHelpers.h>

namespace Shared {

bool CheckIfProcessIdIsRunning(const int &processId)
{
    return Foundation::Platform::IsProcessRunning(processId);
}

bool TerminateProcessById(const int &processId)
{
    return Foundation::Platform::IsProcessRunning(processId) && Foundation::Platform::KillProcess(processId);
}

} // namespace Shared
