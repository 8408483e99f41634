#include <appconfig/backends/utils/RemoteBackendClient.h>
#include <appconfig/backends/utils/RemoteBackendToAttributeMapper.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppConfig::Backends::utils {

namespace {

/*! Null, with a line, where \a stored holds no client. */
RemoteBackendClientPtr ClientOf(const QVariant &stored, const char *caller)
{
    const int type = qMetaTypeId<RemoteBackendClientPtr>();
    auto client = stored.userType() == type ? stored.value<RemoteBackendClientPtr>() : nullptr;
    if (!client) {
        Shared::Logging::FrameworkLog().warning()
            << "RemoteBackendToAttributeMapper::" << caller
            << "() called with incompatible attribute value metaType=" << type
            << " attribute=" << stored.userType();
    }
    return client;
}

} // namespace

bool ReadProperty(const QString &path, const QVariant &initial, const QVariant &stored, QVariant &out)
{
    const auto client = ClientOf(stored, "ReadProperty");
    if (!client)
        return false;
    if (!client->read(path, out))
        out = initial;
    return true;
}

bool WriteProperty(const QString &path, QVariant &stored, const QVariant &in)
{
    const auto client = ClientOf(stored, "WriteProperty");
    return client && client->write(path, in);
}

} // namespace Tessellum::AppConfig::Backends::utils
