#include <core/CoreInterface.h>
#include <core/Library.h>

int main()
{
    const bool started = initializeLibrary() == 0 && getCoreInterface()->getAppConfigRepository();
    const bool stopped = uninitializeLibrary() == 1 && !getCoreInterface();
    return started && stopped ? 0 : 1;
}
