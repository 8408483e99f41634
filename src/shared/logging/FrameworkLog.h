#pragma once

#include <shared/logging/LogStreamProvider.h>

namespace Shared::Logging {

/*!
 * The provider of the framework's own messages:
 * FrameworkLog().warning() << "Class::function() text " << value;
 */
inline LogStreamProvider FrameworkLog()
{
    return LogStreamProvider(
        LogMessageContext(QString(), -1, QString(), QStringLiteral("Tessellum"), {}, {}));
}

} // namespace Shared::Logging
