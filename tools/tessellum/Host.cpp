#include "AttributeWait.h"
#include "EnumNames.h"
#include "Host.h"
#include "JsonLines.h"
#include "RunningLibrary.h"
#include "Shell.h"
#include "StandardInput.h"
#include "StopSignals.h"
#include "StorageCommands.h"

#include <shared/logging/LogHandler.h>

#include <QFileInfo>
#include <QHostAddress>
#include <QUrlQuery>

#include <future>

namespace Tessellum::Tool {

using Notification::CreatePoint;

namespace {

constexpr qint64 listenMs = 10000;
constexpr const char *RootName = "host";
constexpr const char *ServerName = "server";
constexpr const char *StorageServerType = "remote-storage-server";

QString takeNext(const QStringList &arguments, int &index)
{
    if (index + 1 >= arguments.size())
        FailUsage(QStringLiteral("%1 needs more").arg(arguments.last()));
    return arguments.at(++index);
}

/*! The URL whose port a server takes, with its host as the address to listen at. */
QUrl serverUrl(const QString &text)
{
    QUrl url(text);
    if (url.scheme() != QLatin1String("ws") || url.port() < 0)
        FailUsage(QStringLiteral("%1 is no URL of the kind ws://ADDRESS:PORT").arg(text));
    QUrlQuery query(url);
    if (query.hasQueryItem(QStringLiteral("bind")))
        return url;
    const QString host = url.host() == QLatin1String("localhost") ? QStringLiteral("127.0.0.1") : url.host();
    if (QHostAddress(host).isNull())
        FailUsage(QStringLiteral("%1 is no address to listen at").arg(host));
    query.addQueryItem(QStringLiteral("bind"), host);
    url.setQuery(query);
    return url;
}

void addBackend(const QString &type, const QString &name, const QVariant &data)
{
    AppConfig::Backends::BackendCreateDataDetails details;
    details.data = data;
    details.access = 3;
    if (!Configuration()->getBackendInterface()->createBackend(type, name, details, CreatePoint::Done))
        Fail(QStringLiteral("%1 cannot be loaded").arg(data.toString()));
}

void addStorage(const HostStorage &storage)
{
    AppData::Storages::StorageCreateDataDetails details;
    details.location = storage.location;
    if (!RecordedData()->getStorageInterface()->addStorage(storage.type, storage.name, details,
                                                           CreatePoint::Done, QString())) {
        Fail(QStringLiteral("the storage %1 cannot be added").arg(storage.name));
    }
}

/*! The port at which a server listens; fails the command if it does not. */
int portOf(const QStringList &group, const QString &name)
{
    const QString path = Configuration()->getPathFromPathElements(
        group + QStringList{QStringLiteral("remote_server_ports"), name});
    AttributeWait wait({path});
    wait.until([&] { return AttributeValue(path).isValid(); }, QDeadlineTimer(listenMs));
    const int port = AttributeValue(path).toInt();
    if (port == 0)
        Fail(QStringLiteral("the server %1 cannot listen").arg(name));
    return port;
}

/*! Adds what is asked for and returns the line that tells of it. */
QVariantMap setUp(const HostRequest &request)
{
    if (!QFileInfo::exists(request.configuration))
        Fail(QStringLiteral("%1 does not exist").arg(request.configuration));
    // A peer mirrors what lies beneath an attribute, and a backend is none.
    const QString root = QLatin1String(RootName);
    const QString file
        = Configuration()->getPathFromPathElements({root, QFileInfo(request.configuration).baseName()});
    if (!Configuration()->getManipulationInterface()->createAttribute(root, QVariant(), CreatePoint::Done, 3))
        Fail(QStringLiteral("%1 cannot be created").arg(root));
    QVariantMap ready{{QStringLiteral("ready"), true}, {QStringLiteral("path"), root}};
    addBackend(QStringLiteral("json"), file, request.configuration);
    if (!request.storages.isEmpty())
        addPluginSearchPath(request.plugins);
    QVariantMap storagePorts;
    for (const HostStorage &storage : request.storages) {
        addStorage(storage);
        if (storage.type == QLatin1String(StorageServerType)) {
            storagePorts.insert(
                storage.name, portOf({QStringLiteral("appdata"), QStringLiteral("storages")}, storage.name));
        }
    }
    if (!request.serve.isEmpty()) {
        const QString server = QLatin1String(ServerName);
        addBackend(QStringLiteral("remote-backend-server"), server, request.serve);
        ready.insert(QStringLiteral("port"),
                     portOf({QStringLiteral("appconfig"), QStringLiteral("backends")}, server));
    }
    if (!storagePorts.isEmpty())
        ready.insert(QStringLiteral("storage_ports"), storagePorts);
    return ready;
}

} // namespace

HostRequest ParseHostRequest(const QStringList &arguments)
{
    HostRequest request;
    request.plugins = DefaultPluginFolder();
    for (int i = 0; i < arguments.size(); ++i) {
        const QString option = arguments.at(i);
        if (option == QLatin1String("--config")) {
            request.configuration = takeNext(arguments, i);
        } else if (option == QLatin1String("--serve")) {
            request.serve = serverUrl(takeNext(arguments, i));
        } else if (option == QLatin1String("--storage")) {
            const QString type = takeNext(arguments, i);
            const QString name = takeNext(arguments, i);
            request.storages.append({type, name, takeNext(arguments, i)});
        } else if (option == QLatin1String("--serve-storage")) {
            const QString name = takeNext(arguments, i);
            request.storages.append(
                {QLatin1String(StorageServerType), name, serverUrl(takeNext(arguments, i)).toString()});
        } else if (option == QLatin1String("--plugins")) {
            request.plugins = takeNext(arguments, i);
        } else if (option == QLatin1String("--log")) {
            Shared::Logging::LogMessageType level = Shared::Logging::LogMessageType::log;
            const QString name = takeNext(arguments, i);
            if (!ParseEnum(name, level))
                FailUsage(QStringLiteral("%1 is none of %2").arg(name, EnumNames(level)));
            request.logLevel = level;
        } else {
            FailUsage(QStringLiteral("%1 is no option of a host").arg(option));
        }
    }
    if (request.configuration.isEmpty())
        FailUsage(QStringLiteral("a host needs --config FILE.json"));
    return request;
}

void RunHost(const HostRequest &request)
{
    if (request.logLevel)
        Shared::Logging::LogHandler::SetLogLevel(*request.logLevel);
    const StopSignals stop;
    Shell shell;
    const RunningLibrary library;
    JsonLines().write(setUp(request));
    // A command that waits must not keep a signal waiting.
    const auto commands = std::async(std::launch::async, [&] {
        StandardInput input(stop);
        shell.run([&input](std::string &line) { return input.readLine(line); });
        if (shell.wasToldToQuit())
            stop.raise();
    });
    stop.wait();
    uninitializeLibrary();
}

} // namespace Tessellum::Tool
