#include <appconfig/backends/MemoryBackend.h>

namespace Tessellum::AppConfig::Backends {

QStringList MemoryBackend::TypeKeys()
{
    return {QStringLiteral("memory"), QStringLiteral("volatile")};
}

QStringList MemoryBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool MemoryBackend::saveAttributes()
{
    return false;
}

bool MemoryBackend::loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                                     const Notification::CreatePoint &)
{
    out.clear();
    return true;
}

} // namespace Tessellum::AppConfig::Backends
