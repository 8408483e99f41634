#include <appconfig/backends/BackendRegistration.h>
#include <appconfig/backends/ConstraintsBackend.h>
#include <appconfig/backends/JsonBackend.h>
#include <appconfig/backends/MemoryBackend.h>

namespace Tessellum::AppConfig::Backends {

int RegisterBackends(BackendFactory &factory)
{
    return RegisterBackend<MemoryBackend>(factory) + RegisterBackend<JsonBackend>(factory)
        + RegisterBackend<ConstraintsBackend>(factory);
}

} // namespace Tessellum::AppConfig::Backends
