#include "OtherProcess.h"
#include "ServingLibrary.h"

#include <appconfig/backends/utils/RemoteBackendServer.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/storages/remote/RemoteStorageServer.h>
#include <shared/logging/LogHandler.h>

#include <QEvent>
#include <QThread>

using namespace Tessellum;
using Notification::CreatePoint;

namespace {

/*! Of a server, which listens some time after it was made. */
int portAt(const QString &path)
{
    const auto query = getCoreInterface()->getAppConfigRepository()->getQueryInterface();
    QVariant port;
    for (int attempt = 0; attempt < 10000 && port.toInt() == 0; ++attempt) {
        QThread::msleep(1);
        query->getValue(path, port, QMetaType::Int);
    }
    if (port.toInt() == 0)
        qFatal("a server does not listen");
    return port.toInt();
}

bool isSend(const QObject *receiver, const QEvent *event)
{
    return event->type() == QEvent::MetaCall
        && (qobject_cast<const AppConfig::Backends::utils::RemoteBackendServer *>(receiver)
            || qobject_cast<const AppData::Storages::utils::RemoteStorageServer *>(receiver));
}

} // namespace

WatchedApplication::WatchedApplication(int &argumentCount, char **arguments)
    : QCoreApplication(argumentCount, arguments)
{ }

void WatchedApplication::beginWatch(QThread *watchedThread)
{
    longestSend = 0;
    longestOther = 0;
    watched = watchedThread;
}

WatchedApplication::Longest WatchedApplication::endWatch()
{
    watched = nullptr;
    return {longestSend, longestOther};
}

bool WatchedApplication::notify(QObject *receiver, QEvent *event)
{
    if (watched != QThread::currentThread())
        return QCoreApplication::notify(receiver, event);
    auto &longest = isSend(receiver, event) ? longestSend : longestOther;
    const qint64 begin = monotonicTime();
    const bool isTaken = QCoreApplication::notify(receiver, event);
    longest = std::max(longest.load(), monotonicTime() - begin);
    return isTaken;
}

ServingLibrary &ServingLibrary::instance()
{
    static auto *const library = new ServingLibrary;
    return *library;
}

ServingLibrary::ServingLibrary()
    : application(argumentCount, arguments)
{
    initializeLibrary();
    Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::warning);
    const QString name = QStringLiteral("served");
    const auto backends = getCoreInterface()->getAppConfigRepository()->getBackendInterface();
    if (!backends->createBackend(QStringLiteral("remote-backend-server"), name,
                                 {QUrl(QStringLiteral("ws://any:0?bind=127.0.0.1")), QString(), 3},
                                 CreatePoint::Done))
        qFatal("the server is not made");
    configurationPort = portAt(QStringLiteral("appconfig.backends.remote_server_ports.") + name);
}

void ServingLibrary::createValues(const QString &parent, int count)
{
    auto *const provider = AppConfig::utils::RepositoryProvider::getInstance();
    AppConfig::Attributes::AttributesCreateData list;
    AppConfig::Attributes::AttributeCreateData::AttributeCreateDataDetails details;
    details.value = 0.5;
    details.access = 3;
    list.append(AppConfig::Attributes::AttributeCreateData(parent, details));
    for (int i = 0; i < count; ++i) {
        list.append(AppConfig::Attributes::AttributeCreateData(
            QStringLiteral("%1.value%2").arg(parent).arg(i), details));
    }
    provider->getThreadPool()
        .startCreateTask(provider->getRoot(), QString(), QVariant::fromValue(list), CreatePoint::Done)
        ->wait();
}

int ServingLibrary::serveStorage(const QString &name)
{
    AppData::Storages::StorageCreateDataDetails details;
    details.location = QUrl(QStringLiteral("ws://any:0?bind=127.0.0.1"));
    const auto storages = getCoreInterface()->getAppDataRepository()->getStorageInterface();
    if (!storages->addStorage(QStringLiteral("remote-storage-server"), name, details, CreatePoint::Done,
                              name))
        qFatal("the storage is not made");
    return portAt(QStringLiteral("appdata.storages.remote_server_ports.") + name);
}

QString ServingLibrary::urlOf(int port, const QString &path)
{
    return QStringLiteral("ws://127.0.0.1:%1?path=%2&id=").arg(port).arg(path);
}
