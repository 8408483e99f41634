#include <appconfig/backends/BackendRegistration.h>
#include <appconfig/backends/ConstraintsBackend.h>
#include <appconfig/backends/IniFileBackend.h>
#include <appconfig/backends/JsonBackend.h>
#include <appconfig/backends/MemoryBackend.h>
#include <appconfig/backends/ObjectPropertiesBackend.h>
#include <appconfig/backends/RemoteBackend.h>
#include <appconfig/backends/VersionInformationBackend.h>

namespace Tessellum::AppConfig::Backends {

int RegisterBackends(BackendFactory &factory)
{
    return RegisterBackend<MemoryBackend>(factory) + RegisterBackend<JsonBackend>(factory)
        + RegisterBackend<ConstraintsBackend>(factory) + RegisterBackend<IniFileBackend>(factory)
        + RegisterBackend<VersionInformationBackend>(factory) + RegisterBackend<RemoteBackend>(factory)
        + RegisterBackend<ObjectPropertiesBackend>(factory);
}

} // namespace Tessellum::AppConfig::Backends
