#include "common/RecordingNames.h"
#include "Serving.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

using namespace Tessellum;
using Notification::CreatePoint;

namespace {

const QString serverName = QStringLiteral("server");

QUrl serverUrl(const Address &address)
{
    // A server takes all addresses unless it is told which one.
    const QString host
        = address.host == QLatin1String("localhost") ? QStringLiteral("127.0.0.1") : address.host;
    return address.toUrl({{QStringLiteral("bind"), host}});
}

} // namespace

Serving::Serving(const Recording &served, const ServingOptions &servingOptions)
    : recording(served)
    , options(servingOptions)
{ }

bool Serving::start()
{
    AppConfig::Backends::BackendCreateDataDetails backend;
    backend.data = serverUrl(options.configuration);
    AppData::Storages::StorageCreateDataDetails storage;
    storage.location = serverUrl(options.data);
    return recording.configuration()->getBackendInterface()->createBackend(
               QStringLiteral("remote-backend-server"), serverName, backend, CreatePoint::Done)
        && recording.data()->getStorageInterface()->addStorage(
            QStringLiteral("remote-storage-server"), RecordingNames::ServedStorage(), storage,
            CreatePoint::Done, QStringLiteral("What others mirror"))
        && listens({QStringLiteral("appconfig"), QStringLiteral("backends")}, serverName,
                   options.configuration)
        && listens({QStringLiteral("appdata"), QStringLiteral("storages")}, RecordingNames::ServedStorage(),
                   options.data);
}

bool Serving::listens(const QStringList &group, const QString &name, Address &address) const
{
    constexpr int longestMs = 10000;
    const QString path = recording.configuration()->getPathFromPathElements(
        group + QStringList{QStringLiteral("remote_server_ports"), name});
    const auto query = recording.configuration()->getQueryInterface();
    const QDeadlineTimer deadline(longestMs);
    QVariant port;
    while (!query->getValue(path, port, QMetaType::Int) && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::msleep(1);
    }
    address.port = port.toInt();
    return address.port > 0;
}

QString Serving::readyLine() const
{
    const QJsonObject where{{QStringLiteral("configuration"), options.configuration.toString()},
                            {QStringLiteral("data"), options.data.toString()}};
    return QStringLiteral("ready ") + QString::fromUtf8(QJsonDocument(where).toJson(QJsonDocument::Compact));
}
