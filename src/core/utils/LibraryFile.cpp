#include <core/utils/LibraryFile.h>
#include <shared/foundation/platform/ModulePath.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::Core::utils {

QString LibraryFilePath()
{
    static const char addressInLibrary = 0;
    int error = 0;
    const QString path = Shared::Foundation::Platform::ModuleFilePath(&addressInLibrary, error);
    if (path.isEmpty())
        Shared::Logging::FrameworkLog().warning() << "GetModuleFileName failed with error: " << error;
    return path;
}

} // namespace Tessellum::Core::utils
