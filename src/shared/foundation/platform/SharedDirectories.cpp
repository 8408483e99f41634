#include <shared/foundation/platform/SharedDirectories.h>

#include <QStandardPaths>

namespace Shared::Foundation::Platform {

QString PublicDocumentsDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

} // namespace Shared::Foundation::Platform
