#include <appconfig/backends/RemoteBackend.h>
#include <appconfig/backends/utils/RemoteBackendServer.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

namespace Tessellum::AppConfig::Backends {

using Shared::Logging::FrameworkLog;
using Shared::Synchronization::ScopedLock;

QStringList RemoteBackend::TypeKeys()
{
    return {QStringLiteral("remote-backend-server")};
}

QStringList RemoteBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool RemoteBackend::saveAttributes()
{
    return false;
}

bool RemoteBackend::loadAttributesCreateDataInternal(Attributes::AttributesCreateData &,
                                                     const Notification::CreatePoint &)
{
    const BackendCreateData present = getCreateData();
    if (present.type.isEmpty() || present.name.isEmpty())
        return false;
    const QString type = present.type.toLower();
    if (type.endsWith(QLatin1String("server")))
        return loadAttributesServerInternal(present.data);
    return false;
}

bool RemoteBackend::loadAttributesServerInternal(const QVariant &data)
{
    replaceServer(nullptr);
    if (!data.canConvert<QUrl>()) {
        FrameworkLog().warning() << "RemoteBackend::loadAttributesServerInternal() no url instance found in "
                                    "backend data, loading aborted";
        return false;
    }
    const QUrl url = data.toUrl();
    const auto made = url.isValid() ? utils::RemoteBackendServer::Make(getId(), url) : nullptr;
    if (!made) {
        FrameworkLog().warning() << "RemoteBackend::loadAttributesCreateDataInternal() found invalid remote "
                                    "server url in backend data, loading aborted";
        return false;
    }
    if (!made->start())
        return false;
    replaceServer(made);
    return true;
}

void RemoteBackend::replaceServer(std::shared_ptr<utils::RemoteBackendServer> next)
{
    const ScopedLock lock(this);
    server.swap(next);
}

} // namespace Tessellum::AppConfig::Backends
