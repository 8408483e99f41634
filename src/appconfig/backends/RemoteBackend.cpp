#include <appconfig/backends/RemoteBackend.h>
#include <appconfig/backends/utils/RemoteBackendClient.h>
#include <appconfig/backends/utils/RemoteBackendClientLoad.h>
#include <appconfig/backends/utils/RemoteBackendServer.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

namespace Tessellum::AppConfig::Backends {

using Shared::Logging::FrameworkLog;
using Shared::Synchronization::ScopedLock;

namespace {

void WarnOfUrl()
{
    FrameworkLog().warning() << "RemoteBackend::loadAttributesCreateDataInternal() found invalid remote "
                                "server url in backend data, loading aborted";
}

} // namespace

QStringList RemoteBackend::TypeKeys()
{
    return {QStringLiteral("remote-backend-server"), QStringLiteral("remote-backend-client")};
}

QStringList RemoteBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool RemoteBackend::saveAttributes()
{
    return false;
}

bool RemoteBackend::loadAttributes(Notification::ThreadPool &pool, const Notification::CreatePoint &)
{
    const bool loaded = Backend::loadAttributes(pool, Notification::CreatePoint::Done);
    replace(load, {});
    return loaded;
}

bool RemoteBackend::loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                                     const Notification::CreatePoint &)
{
    const BackendCreateData present = getCreateData();
    if (present.type.isEmpty() || present.name.isEmpty())
        return false;
    const QString type = present.type.toLower();
    if (type.endsWith(QLatin1String("server")))
        return loadAttributesServerInternal(present.data);
    if (type.endsWith(QLatin1String("client")))
        return loadAttributesClientInternal(present.data, out);
    return false;
}

bool RemoteBackend::loadAttributesServerInternal(const QVariant &data)
{
    replace(server, {});
    if (!data.canConvert<QUrl>()) {
        FrameworkLog().warning() << "RemoteBackend::loadAttributesServerInternal() no url instance found in "
                                    "backend data, loading aborted";
        return false;
    }
    const QUrl url = data.toUrl();
    const auto made = url.isValid() ? utils::RemoteBackendServer::Make(getId(), url) : nullptr;
    if (!made) {
        WarnOfUrl();
        return false;
    }
    if (!made->start())
        return false;
    replace(server, made);
    return true;
}

bool RemoteBackend::loadAttributesClientInternal(const QVariant &data, Attributes::AttributesCreateData &out)
{
    replace(load, {});
    replace(client, {});
    if (!data.canConvert<QUrl>()) {
        FrameworkLog().warning() << "RemoteBackend::loadAttributesCreateDataInternal() no url instance found "
                                    "in backend data, loading aborted";
        return false;
    }
    const QUrl url = data.toUrl();
    const auto made = url.isValid() ? utils::RemoteBackendClient::Make(self(), url) : nullptr;
    if (!made) {
        WarnOfUrl();
        return false;
    }
    replace(client, made);
    const auto begun = std::make_shared<utils::RemoteBackendClientLoad>(made);
    replace(load, begun);
    begun->run(url, out);
    return true;
}

template <class T>
void RemoteBackend::replace(std::shared_ptr<T> &held, std::shared_ptr<T> next)
{
    const ScopedLock lock(this);
    held.swap(next);
}

} // namespace Tessellum::AppConfig::Backends
